// Foreign text made harmless for a reader.
#pragma once

#include <string>
#include <string_view>

namespace Rex {

// The text with everything that could hurt a reader made visible: control octets, broken UTF-8,
// characters that reorder text or show nothing, and the backslash itself come out as \xNN (\\ for
// the backslash), so that two different texts never print alike.
std::string printable(std::string_view octets);

}  // namespace Rex
