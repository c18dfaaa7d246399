// What ends a command: one line of words for the operator, without the program's name.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace LldpCli {

// It could not be done: exit status 1.
class Failure : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

// This user may not use the socket.
class NoRight : public Failure {
 public:
   using Failure::Failure;
};

// The agent does not do what it was asked, and nothing has changed.
class Refused : public Failure {
 public:
   Refused(const std::string& words, std::optional<size_t> change)
       : Failure(words), change_(change) {}
   // Which of several changes is at fault.
   std::optional<size_t> change() const { return change_; }

 private:
   std::optional<size_t> change_;
};

// What was typed is no command: exit status 2.
class Misuse : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

}  // namespace LldpCli
