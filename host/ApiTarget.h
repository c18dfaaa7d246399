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

}  // namespace Host
