// Feature toggles: behaviour that can be turned to what it was before.
#pragma once

#include <string>

// Where a context's toggle files are: the operator's folder.
struct ToggleFolder {
   std::string path = ".";
};

// The state of a named toggle: what the context's `toggles` say; else what the toggle file, a JSON
// object of names and booleans in the context's ToggleFolder, says; else `byDefault`. The answer
// becomes the context's: a toggle stays as it was at its first use.
bool getToggleState(const char* name, const char* fileName, bool byDefault);
