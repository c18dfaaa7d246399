// The operator's settings as whoever writes them has to keep to: management API and configuration
// file alike.
#pragma once

#include <string>

#include "Rex/EntityType.h"

namespace Host {

// Reads and checks an object of attributes, as Rex::decodeEntity, and where a setting's range is
// narrower than its type also against that. Throws Rex::JsonError, and then nothing has changed.
Rex::Member::Write decodeSettings(const Rex::EntityType& type, const Rex::Json& attributes,
                                  const std::string& path = {});

}  // namespace Host
