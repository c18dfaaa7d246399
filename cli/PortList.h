// Names of ports as an operator lists them: Ethernet1-4,Ethernet3/1-12,Management1.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace LldpCli {

// Whether a port of any switch can bear that name: Ethernet or Management and up to three numbers
// (two for Management) with a slash between them.
bool isPortName(std::string_view name);

// Every port of the list, in its order. In a range the last number counts; behind the dash stands
// that number, or all of the name's. Throws Misuse.
std::vector<std::string> portList(std::string_view list);

}  // namespace LldpCli
