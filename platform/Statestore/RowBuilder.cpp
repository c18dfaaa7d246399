#include "Statestore/RowBuilder.h"

#include "Statestore/RowTable.h"

namespace Statestore {

Rex::Ptr<Rex::Entity> RowBuilder::build(const Rex::Entity& holder, const Place& place,
                                        const std::string& path, int level) {
   const RowImage* image = images_.at(path);
   if (!image || level >= mostRowLevels) {
      faults.push_back(path + (image ? ": too many levels" : ": no such row"));
      return nullptr;
   }
   Rex::Ptr<Rex::Entity> entity;
   try {
      entity = make(holder, place, *image);
   } catch (const std::exception& error) {
      faults.push_back(path + ": " + error.what());
      return nullptr;
   }
   if (!entity) {
      faults.push_back(path + ": no row of the type " + image->type + " is made there");
      return nullptr;
   }
   built_[path] = entity;
   for (const auto& [field, value] : image->fields) {
      try {
         fill(*entity, path, field, value, level);
      } catch (const std::exception& error) {
         faults.push_back(path + '/' + field + ": " + error.what());
      }
   }
   return entity;
}

// The first of its own keys is the one under which the holder has it.
Rex::Ptr<Rex::Entity> RowBuilder::make(const Rex::Entity& holder, const Place& place,
                                       const RowImage& image) {
   const Rex::EntityType* type = Rex::EntityType::find(image.type);
   if (!type) return nullptr;
   std::vector<Rex::Json> keys;
   for (const auto& member : type->members()) {
      if (member->kind != Rex::MemberKind::key) continue;
      if (keys.empty() && isKeyed(*place.member) && !isDir(holder)) {
         keys.push_back(place.member->keyToJson(place.key));
         continue;
      }
      auto found = image.fields.find(member->name);
      if (found == image.fields.end()) throw Rex::JsonError(member->name, "is a key and missing");
      keys.push_back(parseValue(found->second));
   }
   return type->create(keys);
}

void RowBuilder::fill(Rex::Entity& entity, const std::string& path, const std::string& field,
                      const std::string& value, int level) {
   auto place = placeOf(entity, field);
   if (!place) throw Rex::JsonError("", "no such place");
   const Rex::Member& member = *place->member;
   switch (member.kind) {
      case Rex::MemberKind::key:
         return;
      case Rex::MemberKind::scalar:
      case Rex::MemberKind::values:
      case Rex::MemberKind::mapping:
         return member.decodeElement(place->key, parseValue(value), {})(entity);
      default:
         break;
   }
   const std::string below = path + '/' + field;
   if (images_.at(below) && member.kind != Rex::MemberKind::references) {
      auto child = build(entity, *place, below, level + 1);
      if (!child || member.put(entity, place->key, child)) return;
      built_.erase(below);
      throw Rex::JsonError("", "no row of that type stands there");
   }
   auto target = References::fromText(value);
   if (target && member.kind != Rex::MemberKind::children) {
      pointing_.push_back({{path, field}, *place, *target});
   } else if (value != "null") {
      throw Rex::JsonError("", "expected a row, or a path");
   }
}

void RowBuilder::point() {
   for (const Pointing& one : pointing_) {
      auto holder = built_.find(one.name.first);
      if (holder == built_.end()) continue;
      auto built = built_.find(one.target);
      RowSm* standing = built == built_.end() ? table_.at(one.target) : nullptr;
      if (built != built_.end()) {
         one.place.member->put(*holder->second, one.place.key, built->second);
      } else if (standing) {
         one.place.member->put(*holder->second, one.place.key, standing->entity());
      }
   }
}

void RowBuilder::tell() const {
   for (const Pointing& one : pointing_) {
      RowSm* row = table_.at(one.name.first);
      if (!row || table_.pending.has(*row, *one.place.member, anyKeyOf(one.place))) continue;
      auto entity = valueAt(*row->entity(), one.place).entity;
      if (RowSm* target = table_.of(entity.get()); target && target->path() == one.target) {
         table_.references.points(one.name, one.target);
      } else {
         table_.references.waits(one.name, one.target);
         if (table_.at(one.target)) table_.references.handleCame(one.target);
      }
   }
}

}  // namespace Statestore
