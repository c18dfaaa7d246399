// Feature toggles: behaviour that can be turned to what it was before.
#pragma once

// The state of a named toggle: what the context's `toggles` say; else what the toggle file, a JSON
// object of names and booleans in the context's run-time folder, says; else `byDefault`.
bool getToggleState(const char* name, const char* fileName, bool byDefault);
