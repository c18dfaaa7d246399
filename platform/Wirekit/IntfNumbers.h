// The numbers in an interface's name, behind the word that tells its kind. Shared by the
// classifiers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Wirekit {

// Up to three numbers with a slash between them, as in Ethernet3/1/2.
struct IntfNumbers {
   std::array<uint32_t, 3> number{};
   int count = 0;
};

// Nothing unless `name` is `kind`, then one to three decimal numbers of at most six digits with a
// slash between them, then the end.
std::optional<IntfNumbers> intfNumbers(std::string_view name, std::string_view kind);

}  // namespace Wirekit
