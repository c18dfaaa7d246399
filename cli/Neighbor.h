// One neighbour in the JSON that scripts read, which the table and the detailed text are made from.
#pragma once

#include <string>

#include "cli/Client.h"
#include "cli/NeighborItem.h"
#include "cli/Table.h"

namespace LldpCli {

// From the agent's entity of the neighbour; docs/cli.md has the shape. What the neighbour did not
// say is not in it.
Json neighbor(const std::string& port, const Json& remoteSystem, double now);

// The columns of the table, and a neighbour's line in it.
std::vector<Column> neighborColumns();
std::vector<std::string> neighborRow(const Json& neighbor);
// Everything it said, and when.
Fields neighborFields(const Json& neighbor);
// What it is called: its name, or else its chassis.
std::string neighborName(const Json& neighbor);
// Whether its time has run out.
bool isOver(const Json& neighbor);

// What an attribute of the agent's entity holds, or tells to have been sent; null for one that is
// not in the JSON.
const NeighborItem* neighborItem(const std::string& attribute);
// What it now says under these names in the JSON.
Fields changedFields(const Json& neighbor, const Json& names);

}  // namespace LldpCli
