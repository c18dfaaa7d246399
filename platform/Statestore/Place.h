// A place of a row, as the store names it and as the entity has it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Rex/EntityType.h"

namespace Statestore {

// "attribute", "member/key", and in a directory the entry's name; encoded.
std::string fieldOf(const Rex::Entity& entity, const Rex::Member& member, const std::string& key);

// The way back. The key is empty for an attribute.
struct Place {
   const Rex::Member* member;
   std::string key;
};
std::optional<Place> placeOf(const Rex::Entity& entity, std::string_view field);

// All places of an entity that are not empty, its keys among them.
std::vector<Place> placesOf(const Rex::Entity& entity);

// The key as the queue of changes carries it.
Rex::AnyKey anyKeyOf(const Place& place);
bool isDir(const Rex::Entity& entity);

// Whether a place has a key.
bool isKeyed(const Rex::Member& member);

// The JSON that a text is. Throws JsonError when it is none, or nested too deep.
Rex::Json parseValue(std::string_view text);

// What stands at a place: the JSON of a value, empty for none; or the entity.
struct PlaceValue {
   std::string json;
   Rex::Ptr<Rex::Entity> entity;
   bool operator==(const PlaceValue&) const = default;
};
PlaceValue valueAt(const Rex::Entity& entity, const Place& place);

}  // namespace Statestore
