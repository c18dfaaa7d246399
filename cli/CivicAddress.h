// Street addresses (RFC 4776).
#pragma once

#include <string>

#include "cli/Client.h"
#include "cli/Table.h"

namespace LldpCli {

// {"of": "client", "country": "DE", "elements": [{"type": 3, "name": "city", "value": "Berlin"}]},
// the elements in the order in which they were sent.
Json civicAddress(const Json& from);
void addCivicAddress(Fields& lines, const std::string& label, const Json& view);

}  // namespace LldpCli
