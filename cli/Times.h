// The agent's times as an operator counts them: from now.
#pragma once

#include <string>

#include "cli/Client.h"

namespace LldpCli {

// Seconds from `time` to `now`, to the millisecond, not below 0.
double secondsSince(const Json& time, double now);
// Sets `view[name]` to the seconds from `time` to `now`, unless the event has never happened.
void putSince(Json& view, const char* name, const Json& time, double now);
// 12 s, 3 min 20 s, 2 h 5 min, 4 d 1 h
std::string duration(double seconds);

}  // namespace LldpCli
