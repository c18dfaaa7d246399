// The target of a request taken apart: the steps of its path and the parameters behind it.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "Statestore/Path.h"

namespace Host {

struct ApiTarget {
   Statestore::Steps steps;  // of the path, decoded
   std::map<std::string, std::string> parameters;

   // Throws ApiError.
   static ApiTarget parse(std::string_view target);
};

// The steps without the last `count`, which there have to be.
Statestore::Steps above(const Statestore::Steps& steps, size_t count = 1);

// Throws the ApiError of steps that lead nowhere.
[[noreturn]] void nothingAt(const Statestore::Steps& steps);

// A text of a request as an error quotes it back.
std::string inQuotes(std::string_view text);

}  // namespace Host
