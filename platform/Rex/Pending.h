// What a handler has not been told yet.
#pragma once

#include <cstdint>

namespace Rex {

class Entity;

// Whether a change of interest, of an attribute by its id, waits to be delivered in the present
// reaction.
bool anyPending(bool (*ofInterest)(const Entity&, uint32_t attribute));

}  // namespace Rex
