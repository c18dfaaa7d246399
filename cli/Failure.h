// What ends a command: one line of words for the operator, without the program's name.
#pragma once

#include <stdexcept>

namespace LldpCli {

class Failure : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

}  // namespace LldpCli
