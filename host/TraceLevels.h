// The trace of the present context as an operator sees it: levels by facility.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "Rex/Json.h"
#include "host/ApiResources.h"

namespace Host {

// A facility and the mask of its levels.
struct TraceSetting {
   std::string facility;
   uint16_t mask = 0;
};

// "LldpProtocol=0,4,6", or "=all" for every level. Throws std::invalid_argument.
TraceSetting parseTrace(std::string_view text);

// Puts a setting in force. Throws std::invalid_argument, which lists the facilities, for one that
// there is not.
void traceIs(const TraceSetting& setting);

// {"LldpProtocol": [0, 4, 6], ...}, every facility there is.
Rex::Json traceToJson();
// Takes that form, and with `whole` turns off what it does not name. Throws Rex::JsonError, and
// then nothing has changed.
void traceFromJson(const Rex::Json& json, bool whole);

// /v1/agent/trace: the same through the management API.
ApiResource traceResource();

}  // namespace Host
