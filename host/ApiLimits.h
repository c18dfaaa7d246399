// What one client, one user and all of them together may ask of the management API. Each socket has
// these for itself, so that readers cannot keep an operator out; a user's requests count over all.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Host {

struct ApiLimits {
   uint32_t headerBytes = 16 * 1024;  // request line and header fields; a chunk's line
   uint64_t bodyBytes = 1024 * 1024;  // of a request
   uint64_t answerBytes =
       64 * 1024 * 1024;        // body of an answer, or what stands when a stream begins
   double requestSeconds = 10;  // from a request's first octet to its answer's last
   size_t clients = 32;
   size_t streams = 16;               // at a time
   size_t streamBytes = 1024 * 1024;  // events that wait for the reader of one stream
   double requestBurst = 4096;        // requests of one user at once
   double requestsPerSecond = 1024;   // and in the long run
   double stallSeconds = 30;          // a reader who takes nothing so long may lose its stream
   double saveBurst = 8;              // writes of the configuration file at once
   double savesPerSecond = 1;         // and in the long run
};

}  // namespace Host
