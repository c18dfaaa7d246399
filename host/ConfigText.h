// A text of JSON that people write: comments are allowed, no field may stand twice in an object,
// and whoever finds fault with a field can tell its line.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Rex/Json.h"

namespace Host {

// What is wrong, and in which line.
class ConfigTextError : public std::runtime_error {
 public:
   ConfigTextError(size_t line, const std::string& words) : std::runtime_error(words), line(line) {}
   const size_t line;  // counted from 1
};

class ConfigText {
 public:
   static constexpr size_t maxDepth = 16;

   // Throws ConfigTextError.
   explicit ConfigText(std::string text);

   const Rex::Json& json() const { return json_; }
   // The line of the field at a path of names, as JsonError has it ("a.b[2].c"); that of the field
   // around it where it has none of its own.
   size_t lineOf(std::string_view path) const;

 private:
   const std::string text_;
   const Rex::Json json_;
};

}  // namespace Host
