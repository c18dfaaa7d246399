// Octets and texts in the agent's JSON, and as an operator reads them.
#pragma once

#include <string>
#include <string_view>

#include "cli/Client.h"

namespace LldpCli {

// The octets behind a text: a string, or {"octets": "hexadecimal"} for what is no UTF-8.
std::string octets(const Json& text);
// The text made harmless, as it may be printed.
std::string text(const Json& text);
// Pairs of lower-case hexadecimal digits.
std::string hex(std::string_view octets, std::string_view separator = "");
// An address by its IANA family number: 1 IPv4, 2 IPv6, 6 MAC. Hexadecimal for another family or
// a wrong length.
std::string address(unsigned family, std::string_view octets);

}  // namespace LldpCli
