// Names of the numbers, bits and flags in TLVs.
#pragma once

#include <initializer_list>
#include <span>
#include <string>

#include "cli/Client.h"

namespace LldpCli {

struct Name {
   unsigned number;
   const char* name;
};

// Null where there is none.
const char* findName(std::span<const Name> names, unsigned number);
// The name, or such as "reserved 7".
std::string nameOf(std::span<const Name> names, unsigned number);

// The names of the bits that are set, from the lowest on, as a list; "Reserved 7" for a bit that
// has none.
Json bitNames(std::span<const char* const> names, unsigned bits);
// Bridge, Router; none for an empty list.
std::string listWords(const Json& names);

// supported, not enabled; from members that are true or false.
std::string flagWords(const Json& view, std::initializer_list<const char*> flags);

}  // namespace LldpCli
