// What a port of this switch says in the TLVs of organisations, as far as it is to send them.
#pragma once

#include "cli/Client.h"
#include "cli/Table.h"

namespace LldpCli {

// Under the names that a neighbour's have, and "powerFallbackWatts".
void putLocalTlvs(Json& view, const Json& localPort, const Json& portConfig);
// The TLVs that others have sent on the port, each with the providers that ask for it.
void putExternalTlvs(Json& view, const std::string& port, const Json& localPort,
                     const Json& providers);
void addLocalTlvLines(Fields& lines, const Json& view);

}  // namespace LldpCli
