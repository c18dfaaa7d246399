// Paths of the state store. A path is steps between slashes; a step that holds a slash or a percent
// sign itself writes it %2F or %25 where a whole path stands in one text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Statestore {

using Steps = std::vector<std::string>;

// The steps of a path as the code writes it: split at slashes, nothing decoded. Empty steps fall
// away, so that a leading, a trailing or a doubled slash does no harm.
Steps splitPath(std::string_view path);

// The steps of a path as an operator writes it, each with %XX decoded; nothing for a percent sign
// without two hexadecimal digits behind it.
std::optional<Steps> decodePath(std::string_view path);

// The way back: every octet of a step that does not stand for itself in a URL's path comes out as
// %XX (RFC 3986, 3.3).
std::string encodeStep(std::string_view step);
std::string encodePath(const Steps& steps);

}  // namespace Statestore
