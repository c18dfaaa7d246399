// Supervisors. Each is a cell, numbered 1 or 2.
#pragma once

#include <string_view>

#include "Rex/String.h"

namespace Cell {

// The number of the supervisor that the present context runs on.
int cellId();

// The form of a path that each cell has for itself, "cell/<number>/<path>". Cell 0 means this one.
Rex::String path(std::string_view path, int cell);

}  // namespace Cell
