// The applications of LLDP-MED that have network policies (ANSI/TIA-1057, 10.2.3.1).
#pragma once

#include <array>

#include "cli/Names.h"

namespace LldpCli {

inline constexpr auto applicationNames = std::to_array<Name>({{1, "voice"},
                                                              {2, "voice signaling"},
                                                              {3, "guest voice"},
                                                              {4, "guest voice signaling"},
                                                              {5, "softphone voice"},
                                                              {6, "video conferencing"},
                                                              {7, "streaming video"},
                                                              {8, "video signaling"}});

}  // namespace LldpCli
