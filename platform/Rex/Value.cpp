#include "Rex/Value.h"

#include <fmt/format.h>

namespace Rex {

void detail::printNumber(std::ostream& out, double value) {
   out << fmt::format("{:.6f}", value);
}

}  // namespace Rex
