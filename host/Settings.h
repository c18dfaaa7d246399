// The operator's settings as whoever writes them has to keep to: management API and configuration
// file alike. Where a range is narrower than an attribute's type it stands here, and nowhere else.
#pragma once

#include <string>
#include <string_view>

#include "Rex/EntityType.h"
#include "Wirekit/IntfId.h"

namespace Host {

// Whether the agent can rank an interface, or one of its kind has no rank. An interface of which
// this does not hold must not come to it.
bool isRanked(const Wirekit::IntfId& intfId);

// Reads and checks an object of attributes, as Rex::decodeEntity, and also against the ranges.
// Throws Rex::JsonError, and then nothing has changed.
Rex::Member::Write decodeSettings(const Rex::EntityType& type, const Rex::Json& attributes,
                                  const std::string& path = {});
// Throws Rex::JsonError where an attribute is out of its range.
void checkRanges(const Rex::EntityType& type, const Rex::Json& attributes,
                 const std::string& path = {});

// What is wrong with a text that is to be the key of a new row; empty when nothing is.
std::string keyFault(const Rex::Member& collection, std::string_view key);
// As many rows as a collection may have.
size_t mostRows(const Rex::Member& collection);

}  // namespace Host
