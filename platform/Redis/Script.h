// The scripts that run inside the server, each as a whole or not at all; one file of Lua each.
#pragma once

namespace Redis {

struct Script {
   const char* sha;  // SHA-1 of the text: the server knows it by that once it has run it
   const char* text;
};

extern const Script lifeScript;
extern const Script readScript;
extern const Script changeScript;

// How many entries one answer of "read" holds, and a change more.
constexpr const char* entriesAtATime = "500";

}  // namespace Redis
