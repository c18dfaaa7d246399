// MAC addresses as an operator types them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace LldpCli {

// Of 02:00:00:00:00:0A, 02-00-00-00-00-0a and 0200.0000.000a the form 02:00:00:00:00:0a; nothing
// of any other text.
std::optional<std::string> macAddress(std::string_view typed);

}  // namespace LldpCli
