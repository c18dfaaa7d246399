// Why the process cannot start, in one line for whoever started it.
#pragma once

#include <stdexcept>

namespace Host {

class StartError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

}  // namespace Host
