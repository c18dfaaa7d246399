// How much room a text takes on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace LldpCli {

// Columns that well-formed UTF-8 takes: two for a wide character, none for a combining one.
size_t displayWidth(std::string_view text);
// The text in at most `width` columns; the mark at the end says that something was cut off.
std::string cut(std::string_view text, size_t width);
inline constexpr std::string_view cutMark = "…";

}  // namespace LldpCli
