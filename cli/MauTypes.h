// Kinds of Ethernet transceiver.
#pragma once

#include <span>

#include "cli/Names.h"

namespace LldpCli {

// By the numbers of dot3MauType (IANA-MAU-MIB, first RFC 4836).
std::span<const Name> mauTypeNames();

}  // namespace LldpCli
