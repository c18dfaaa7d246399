#include "host/ApiEntities.h"

#include <charconv>

#include "Rex/Dir.h"

namespace Host {
namespace {

constexpr int wholeDepth = 16;

// A text of the request as it is quoted back.
std::string inQuotes(std::string_view text) {
   return Rex::Json(text).dump(-1, ' ', true, Rex::Json::error_handler_t::replace);
}

[[noreturn]] void unknown(const Statestore::Steps& steps) {
   throw ApiError(404, "there is nothing at '" + Statestore::encodePath(steps) + "'");
}

// A body that is left out means no attributes.
Rex::Json attributesOf(const std::string& body) {
   if (body.empty()) return Rex::Json::object();
   Rex::Json json = Rex::Json::parse(body, nullptr, false);
   if (json.is_discarded()) throw ApiError(400, "the body is not JSON");
   return json;
}

Rex::Member::Write checked(const Rex::EntityType& type, const std::string& body) {
   Rex::Json attributes = attributesOf(body);
   ApiAccess::stamp(type, attributes);
   try {
      return Rex::decodeEntity(type, attributes, "");
   } catch (const Rex::JsonError& error) {
      throw ApiError(400, error.what(), error.path());
   }
}

int depthOf(const ApiTarget& target) {
   auto at = target.parameters.find("depth");
   if (at == target.parameters.end()) return wholeDepth;
   const std::string& text = at->second;
   int depth = 0;
   auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), depth);
   if (error != std::errc() || end != text.data() + text.size() || depth < 0 ||
       depth > wholeDepth) {
      throw ApiError(400, "depth: expected a whole number from 0 to " + std::to_string(wholeDepth) +
                              ", got " + inQuotes(text));
   }
   return depth;
}

bool isCollection(Rex::MemberKind kind) {
   return kind != Rex::MemberKind::key && kind != Rex::MemberKind::scalar &&
          kind != Rex::MemberKind::pointer;
}

Statestore::Steps without(const Statestore::Steps& steps, size_t last) {
   return {steps.begin(), steps.end() - static_cast<std::ptrdiff_t>(last)};
}

}  // namespace

void ApiEntities::serveIn(ApiResources& resources) {
   resources.resourceIs({"/v1/entity/",
                         {"GET", "PATCH", "PUT", "DELETE"},
                         {"depth", "type"},
                         [this](const ApiRequest& request, const ApiTarget& target) {
                            return serve(request, target);
                         }});
   resources.resourceIs({"/v1/paths", {"GET"}, {}, [this](const ApiRequest&, const ApiTarget&) {
                            return ApiAnswer{200, paths(), {}};
                         }});
}

Rex::Json ApiEntities::paths() const {
   Rex::Json all = Rex::Json::array();
   for (const std::string& path : entityManager_->paths()) {
      auto entity = entityManager_->getEntity(path);
      all.push_back({{"path", path},
                     {"type", entity->entityType().name()},
                     {"writable", access_.refusal(path).empty()}});
   }
   return {{"paths", all}};
}

ApiAnswer ApiEntities::serve(const ApiRequest& request, const ApiTarget& target) {
   Statestore::Steps steps(target.steps.begin() + 2, target.steps.end());
   if (request.method == "PATCH") return patch(steps, request.body);
   if (request.method == "PUT") return put(steps, target, request.body);
   if (request.method == "DELETE") return remove(steps);
   return get(steps, target);
}

ApiAnswer ApiEntities::get(const Statestore::Steps& steps, const ApiTarget& target) const {
   int depth = depthOf(target);
   if (auto found = entityManager_->find(steps)) {
      return {200, Rex::entityToJson(*found.entity, depth), {}};
   }
   // An attribute or a collection of an entity.
   if (steps.empty()) unknown(steps);
   auto found = entityManager_->find(without(steps, 1));
   const Rex::Member* member = found ? found.entity->entityType().member(steps.back()) : nullptr;
   if (!member) unknown(steps);
   return {200, Rex::memberToJson(*member, *found.entity, depth), {}};
}

ApiAnswer ApiEntities::patch(const Statestore::Steps& steps, const std::string& body) {
   auto found = entityManager_->find(steps);
   if (!found) unknown(steps);
   requireWritable(found.root);
   change(*found.entity, body);
   return {204, {}, {}};
}

ApiAnswer ApiEntities::put(const Statestore::Steps& steps, const ApiTarget& target,
                           const std::string& body) {
   Place to = place(steps);
   if (auto standing = entityManager_->find(steps)) {
      requireWritable(to.root);
      change(*standing.entity, body);
      return {204, {}, {}};
   }
   requireWritable(to.root);
   if (std::string fault = to.member->keyFault(to.key); !fault.empty()) {
      throw ApiError(400, "key of " + to.member->name + ": " + fault, to.member->name);
   }
   return make(to, target, body);
}

ApiAnswer ApiEntities::make(const Place& place, const ApiTarget& target, const std::string& body) {
   if (auto dir = Rex::dynamicPtr<Rex::Dir>(place.holder)) {
      auto at = target.parameters.find("type");
      std::string name(at == target.parameters.end() ? ApiAccess::entryType(place.root)
                                                     : std::string_view(at->second));
      const Rex::EntityType* type = Rex::EntityType::find(name);
      auto made = type ? type->create() : nullptr;
      if (!made) {
         throw ApiError(400,
                        "type: expected the name of an entity type that can stand in a "
                        "directory, got " +
                            inQuotes(name));
      }
      checked(*type, body)(*made);
      dir->entityPtrIs(Rex::String(place.key), made);
      return {201, {}, {}};
   }
   const Rex::EntityType* type = place.member->madeType();
   if (!type) {
      throw ApiError(405, "members of " + place.member->name + " are not made here", {},
                     "GET, DELETE");
   }
   auto write = checked(*type, body);
   // As one reaction, so that the new row is filled before its key is reported.
   Rex::Dispatcher::run([&] { write(*place.member->makeChild(*place.holder, place.key)); });
   return {201, {}, {}};
}

ApiAnswer ApiEntities::remove(const Statestore::Steps& steps) {
   Place from = place(steps);
   requireWritable(from.root);
   if (!from.member->removeKey(*from.holder, from.key)) unknown(steps);
   return {204, {}, {}};
}

void ApiEntities::change(Rex::Entity& entity, const std::string& body) {
   checked(entity.entityType(), body)(entity);
}

ApiEntities::Place ApiEntities::place(const Statestore::Steps& steps) const {
   if (steps.empty()) unknown(steps);
   if (auto holder = entityManager_->find(without(steps, 1))) {
      if (dynamic_cast<Rex::Dir*>(holder.entity.get())) {
         return {holder.entity, holder.entity->entityType().member("entityPtr"), steps.back(),
                 holder.root};
      }
   }
   auto holder = steps.size() > 1 ? entityManager_->find(without(steps, 2)) : Statestore::Found();
   const Rex::Member* member =
       holder ? holder.entity->entityType().member(steps[steps.size() - 2]) : nullptr;
   if (member && isCollection(member->kind)) {
      return {holder.entity, member, steps.back(), holder.root};
   }
   if (!entityManager_->find(steps)) unknown(steps);
   throw ApiError(405, "'" + Statestore::encodePath(steps) + "' is no member of a collection", {},
                  "GET, PATCH");
}

void ApiEntities::requireWritable(const std::string& root) const {
   std::string words = access_.refusal(root);
   if (!words.empty()) throw ApiError(403, words);
}

}  // namespace Host
