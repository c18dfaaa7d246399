// What the random worlds share. A failure names its seed; LLDP_WORLD_SEED=<seed> replays it, and
// LLDP_WORLD_STEPS=<n> makes it longer or shorter. LLDP_WORLD_SEEDS=<n> lives more of them.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

namespace LldpTest {

inline int fromEnvironment(const char* name, int otherwise) {
   const char* text = std::getenv(name);
   return text ? std::atoi(text) : otherwise;
}

// Lives a world of each seed, or of the one to be replayed, until one fails.
template <class Live>
void liveSeeds(unsigned seeds, int steps, Live live) {
   steps = fromEnvironment("LLDP_WORLD_STEPS", steps);
   seeds = static_cast<unsigned>(fromEnvironment("LLDP_WORLD_SEEDS", static_cast<int>(seeds)));
   auto replay = static_cast<unsigned>(fromEnvironment("LLDP_WORLD_SEED", 0));
   unsigned last = replay ? replay : seeds;
   for (unsigned seed = replay ? replay : 1; seed <= last; ++seed) {
      SCOPED_TRACE("replay with LLDP_WORLD_SEED=" + std::to_string(seed));
      ASSERT_NO_FATAL_FAILURE(live(seed, steps));
   }
}

}  // namespace LldpTest
