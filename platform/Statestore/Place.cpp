#include "Statestore/Place.h"

#include "Rex/Dir.h"
#include "Statestore/Path.h"

namespace Statestore {

bool isDir(const Rex::Entity& entity) {
   return &entity.entityType() == &Rex::Dir::staticType();
}

bool isKeyed(const Rex::Member& member) {
   switch (member.kind) {
      case Rex::MemberKind::key:
      case Rex::MemberKind::scalar:
      case Rex::MemberKind::pointer:
         return false;
      default:
         return true;
   }
}

std::string fieldOf(const Rex::Entity& entity, const Rex::Member& member, const std::string& key) {
   if (!isKeyed(member)) return member.name;
   return isDir(entity) ? encodeStep(key) : member.name + '/' + encodeStep(key);
}

std::optional<Place> placeOf(const Rex::Entity& entity, std::string_view field) {
   const Rex::EntityType& type = entity.entityType();
   // Most fields are an attribute's bare name.
   if (const Rex::Member* member = type.member(field); member && !isKeyed(*member)) {
      return Place{member, {}};
   }
   auto steps = decodePath(field);
   if (!steps || steps->empty() || encodePath(*steps) != field) return std::nullopt;
   if (isDir(entity)) {
      if (steps->size() != 1) return std::nullopt;
      return Place{type.members().front().get(), steps->front()};
   }
   const Rex::Member* member = type.member(steps->front());
   if (!member || steps->size() != (isKeyed(*member) ? 2u : 1u)) return std::nullopt;
   Place place{member, steps->size() == 2 ? steps->back() : std::string()};
   // One key has one text.
   if (isKeyed(*member)) {
      Rex::AnyKey key = member->anyKey(place.key);
      if (!key.has() || member->keyText(key) != place.key) return std::nullopt;
   }
   return place;
}

std::vector<Place> placesOf(const Rex::Entity& entity) {
   std::vector<Place> places;
   for (const auto& member : entity.entityType().members()) {
      if (!isKeyed(*member)) {
         places.push_back({member.get(), {}});
      } else {
         for (std::string& key : member->keys(entity)) {
            places.push_back({member.get(), std::move(key)});
         }
      }
   }
   return places;
}

Rex::AnyKey anyKeyOf(const Place& place) {
   return isKeyed(*place.member) ? place.member->anyKey(place.key) : Rex::AnyKey();
}

Rex::Json parseValue(std::string_view text) {
   auto follow = [](int depth, Rex::Json::parse_event_t, const Rex::Json&) {
      if (static_cast<size_t>(depth) <= Rex::mostJsonLevels) return true;
      throw Rex::JsonError("", "is nested too deep");
   };
   Rex::Json json = Rex::Json::parse(text, follow, false);
   if (json.is_discarded()) throw Rex::JsonError("", "is no JSON");
   return json;
}

PlaceValue valueAt(const Rex::Entity& entity, const Place& place) {
   switch (place.member->kind) {
      case Rex::MemberKind::key:
      case Rex::MemberKind::scalar:
         return {place.member->toJson(entity).dump(), nullptr};
      case Rex::MemberKind::values:
      case Rex::MemberKind::mapping: {
         Rex::Json json = place.member->elementToJson(entity, place.key);
         return {json.is_discarded() ? std::string() : json.dump(), nullptr};
      }
      default:
         return {{}, place.member->child(entity, place.key)};
   }
}

}  // namespace Statestore
