#include "Statestore/Cell.h"

#include <fmt/format.h>

#include "Rex/Context.h"

namespace Cell {

int cellId() {
   return Rex::Context::current().cellId;
}

Rex::String path(std::string_view path, int cell) {
   return Rex::String(fmt::format("cell/{}/{}", cell ? cell : cellId(), path));
}

}  // namespace Cell
