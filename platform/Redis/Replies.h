// The server's replies as rows and changes. What stands in the list may have been put there by
// anybody.
#pragma once

#include <hiredis/hiredis.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Statestore/Store.h"

namespace Redis {

// Empty for what is no text.
std::string_view text(const redisReply& reply);
// Whether it is an error whose words begin with that code.
bool isError(const redisReply& reply, std::string_view code = {});

// A row from its fields; nothing for what is none.
std::optional<Statestore::Row> parseRow(std::string path, const redisReply& reply);
// Whether a field's value is one that a type's name is written as: it may be a row of its own.
bool mayHoldRow(std::string_view value);

struct Changes {
   // An entry that is no change, and an empty one, stands as a change of no writer.
   std::vector<Statestore::Change> changes;
   size_t malformed = 0;       // entries that are no change
   std::string lastMalformed;  // id of the last of them
};
// Nothing for what is no list of entries.
std::optional<Changes> parseChanges(const redisReply& reply);

}  // namespace Redis
