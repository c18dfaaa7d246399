// The server's replies as rows and changes. What stands in the list may have been put there by
// anybody.
#pragma once

#include <hiredis/hiredis.h>

#include <optional>
#include <string_view>
#include <vector>

#include "Statestore/Store.h"

namespace Redis {

// Empty for what is no text.
std::string_view text(const redisReply& reply);
// Whether it is an error whose words begin with that code.
bool isError(const redisReply& reply, std::string_view code = {});

// Nothing for what is no answer of the script "load". What is no row is left out.
std::optional<Statestore::Snapshot> parseSnapshot(const redisReply& reply);

struct Changes {
   // An entry that is no change, and an empty one, stands as a change of no writer.
   std::vector<Statestore::Change> changes;
   size_t malformed = 0;  // entries that are no change
};
// Nothing for what is no list of entries.
std::optional<Changes> parseChanges(const redisReply& reply);

}  // namespace Redis
