// The level masks of the trace facilities of the present context: one bit for each level. They are
// copied here when the context changes, so that a trace statement that is off costs one load and
// one branch.
#pragma once

#include <array>
#include <cstdint>

namespace Rex {

constexpr std::size_t maxTraceFacilities = 16;
using TraceMasks = std::array<uint16_t, maxTraceFacilities>;
inline TraceMasks traceMasks{};

}  // namespace Rex
