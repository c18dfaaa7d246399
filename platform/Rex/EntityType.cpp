#include "Rex/EntityType.h"

#include <algorithm>
#include <map>

#include "Rex/Assert.h"
#include "Rex/Dir.h"

namespace Rex {
namespace {

std::map<std::string, const EntityType*, std::less<>>& registry() {
   static std::map<std::string, const EntityType*, std::less<>> all;
   return all;
}

}  // namespace

Member::Write Member::decode(const Json&, const std::string& path) const {
   throw JsonError(path, "cannot be written as a whole");
}
Ptr<Entity> Member::child(const Entity&, std::string_view) const {
   return nullptr;
}
Ptr<Entity> Member::makeChild(Entity&, std::string_view) const {
   return nullptr;
}
const EntityType* Member::madeType() const {
   return nullptr;
}
bool Member::put(Entity&, std::string_view, const Ptr<Entity>&) const {
   return false;
}
bool Member::mayOwn() const {
   return false;
}
Json Member::elementToJson(const Entity&, std::string_view) const {
   return Json(Json::value_t::discarded);
}
Member::Write Member::decodeElement(std::string_view, const Json&, const std::string& path) const {
   throw JsonError(path, "has no elements to be written");
}
std::string Member::keyFault(std::string_view) const {
   return {};
}
bool Member::removeKey(Entity&, std::string_view) const {
   return false;
}
std::string Member::keyText(const AnyKey&) const {
   return {};
}
AnyKey Member::anyKey(std::string_view) const {
   return {};
}
Json Member::keyToJson(std::string_view) const {
   return Json(Json::value_t::discarded);
}
std::vector<std::string> Member::keys(const Entity&) const {
   return {};
}

EntityType::EntityType(std::string name, Maker maker, KeyedMaker keyedMaker,
                       std::vector<std::unique_ptr<Member>> members)
    : name_(std::move(name)),
      maker_(std::move(maker)),
      keyedMaker_(std::move(keyedMaker)),
      members_(std::move(members)) {
   uint32_t last = 0;
   for (const auto& member : members_) {
      REX_ASSERT(last < member->id);  // a base is less deep, and stands first
      last = member->id;
      if (member->kind == MemberKind::key) ++keys_;
   }
   registry().emplace(name_, this);
}

Ptr<Entity> EntityType::create(const std::vector<Json>& keys) const {
   if (keys.size() != keys_) return nullptr;
   return keys_ ? (keyedMaker_ ? keyedMaker_(keys) : nullptr) : create();
}

const Member* EntityType::member(std::string_view name) const {
   for (const auto& member : members_) {
      if (member->name == name) return member.get();
   }
   return nullptr;
}

const Member* EntityType::member(uint32_t id) const {
   auto at = std::lower_bound(members_.begin(), members_.end(), id,
                              [](const auto& member, uint32_t id) { return member->id < id; });
   return at != members_.end() && (*at)->id == id ? at->get() : nullptr;
}

const EntityType* EntityType::find(std::string_view name) {
   auto at = registry().find(name);
   return at == registry().end() ? nullptr : at->second;
}

Json memberToJson(const Member& member, const Entity& entity, int depth) {
   if (member.kind != MemberKind::children) return member.toJson(entity);
   Json children = Json::object();
   for (const std::string& key : member.keys(entity)) {
      Ptr<Entity> child = member.child(entity, key);
      children[key] = depth > 0 && child ? entityToJson(*child, depth - 1) : Json::object();
   }
   return children;
}

Json entityToJson(const Entity& entity, int depth) {
   Json object = Json::object();
   for (const auto& member : entity.entityType().members()) {
      object[member->name] = memberToJson(*member, entity, depth);
   }
   return object;
}

Member::Write decodeEntity(const EntityType& type, const Json& json, const std::string& path) {
   if (!json.is_object()) throw JsonError(path, "expected an object of attributes");
   std::vector<Member::Write> writes;
   for (const auto& [name, value] : json.items()) {
      const Member* member = type.member(name);
      const std::string place = fieldPath(path, name);
      if (!member) throw JsonError(place, "no such attribute of " + type.name());
      writes.push_back(member->decode(value, place));
   }
   return [writes](Entity& entity) {
      for (const auto& write : writes) write(entity);
   };
}

Ptr<Entity> findBelow(const Ptr<Entity>& entity, const std::vector<std::string>& steps,
                      size_t from) {
   Ptr<Entity> at = entity;
   for (size_t i = from; at && i < steps.size();) {
      if (auto* dir = dynamic_cast<Dir*>(at.get())) {
         at = dir->entityPtr(String(steps[i++]));
         continue;
      }
      const Member* member = at->entityType().member(steps[i++]);
      if (!member) return nullptr;
      if (member->kind == MemberKind::pointer) {
         at = member->child(*at, {});
      } else {
         at = i < steps.size() ? member->child(*at, steps[i++]) : nullptr;
      }
   }
   return at;
}

}  // namespace Rex
