// What a text is written to, and how parts of it stand out there.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace LldpCli {

struct Terminal {
   std::optional<size_t> width;  // columns; none when the output goes elsewhere
   bool colours = false;
};

// Colour never says what the words do not.
enum class Style { plain, heading, bad, faint };
std::string styled(const std::string& text, Style style, const Terminal& terminal);

// Whether a terminal is to show colours, by the environment: NO_COLOR that is set and not empty
// forbids them (no-color.org), and some terminals have none.
bool wantsColours(const char* noColor, const char* term);

}  // namespace LldpCli
