// What turns the seconds since boot into absolute time: an offset that is fixed once a boot and
// kept in a file, so that every process and every restart of that boot shares it. The wall clock
// may be set later; the agent's time does not jump with it.
#pragma once

#include <optional>
#include <string>

namespace Host {

// The offset in seconds: of the file when it is of this boot, else `fresh`, which is written down.
// Throws StartError when the file can be neither read nor written.
double timeAnchor(const std::string& file, const std::string& bootId, double fresh);

// The offset of the file, if it is of this boot and can be read.
std::optional<double> standingAnchor(const std::string& file, const std::string& bootId);

}  // namespace Host
