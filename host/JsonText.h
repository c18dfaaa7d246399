// A text of JSON from outside, a file or a request: no deeper than Rex::mostJsonLevels, no field
// may stand twice in an object, and whoever finds fault with a field can tell its line.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Rex/Json.h"

namespace Host {

// What is wrong, and in which line.
class JsonTextError : public std::runtime_error {
 public:
   JsonTextError(size_t line, const std::string& words) : std::runtime_error(words), line(line) {}
   const size_t line;  // counted from 1
};

class JsonText {
 public:
   enum class Comments { refused, allowed };

   // Throws JsonTextError.
   JsonText(std::string text, Comments comments);

   const Rex::Json& json() const { return json_; }
   // The line of the field at a path of names, as JsonError has it ("a.b[2].c"); that of the field
   // around it where it has none of its own.
   size_t lineOf(std::string_view path) const;

 private:
   const std::string text_;
   const Comments comments_;
   const Rex::Json json_;
};

}  // namespace Host
