// What a call refuses with.
#pragma once

#include <exception>
#include <string>

namespace LldpTest {

// The words of the exception that `call` ends with; "" where it ends well. An exception of another
// kind goes on to its test.
template <class Exception = std::exception, class Call>
std::string refusal(Call call) {
   try {
      call();
   } catch (const Exception& exception) {
      return exception.what();
   }
   return "";
}

}  // namespace LldpTest
