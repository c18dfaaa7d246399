#include "host/ApiEntities.h"

#include <charconv>

#include "host/ApiChanges.h"

namespace Host {
namespace {

constexpr int wholeDepth = 16;

ApiChanges::Change changeOf(const Rex::Json& json) {
   if (!json.is_object()) throw ApiError(400, "a change: expected an object");
   for (const auto& [name, value] : json.items()) {
      bool text = name == "method" || name == "path" || name == "type";
      if (!text && name != "body")
         throw ApiError(400, inQuotes(name) + ": no such field of a change", name);
      if (text && !value.is_string()) throw ApiError(400, name + ": expected text", name);
   }
   for (const char* needed : {"method", "path"}) {
      if (!json.contains(needed)) throw ApiError(400, std::string(needed) + " is missing", needed);
   }
   auto steps = Statestore::decodePath(json["path"].get_ref<const std::string&>());
   if (!steps) throw ApiError(400, "path: '%' without two hexadecimal digits", "path");
   return {json["method"], *std::move(steps), json.value("type", ""),
           json.value("body", Rex::Json::object())};
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

// What stands behind /v1/entity.
Statestore::Steps stepsOf(const ApiTarget& target) {
   return {target.steps.begin() + 2, target.steps.end()};
}

}  // namespace

void ApiEntities::serveIn(ApiResources& resources) {
   resources.resourceIs({"/v1/entity/",
                         {"GET", "PATCH", "PUT", "DELETE"},
                         {"depth", "type"},
                         [this](const ApiRequest& request, const ApiTarget& target) {
                            if (request.method != "GET") return change(request, target);
                            return get(stepsOf(target), target);
                         }});
   resources.resourceIs(
       {"/v1/changes", {"POST"}, {}, [this](const ApiRequest& request, const ApiTarget&) {
           return changeAll(request);
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

ApiAnswer ApiEntities::get(const Statestore::Steps& steps, const ApiTarget& target) const {
   int depth = depthOf(target);
   if (auto found = entityManager_->find(steps)) {
      return {200, Rex::entityToJson(*found.entity, depth), {}};
   }
   // An attribute or a collection of an entity.
   if (steps.empty()) nothingAt(steps);
   auto found = entityManager_->find(above(steps));
   const Rex::Member* member = found ? found.entity->entityType().member(steps.back()) : nullptr;
   if (!member) nothingAt(steps);
   return {200, Rex::memberToJson(*member, *found.entity, depth), {}};
}

ApiAnswer ApiEntities::change(const ApiRequest& request, const ApiTarget& target) {
   ApiChanges::Change one{request.method, stepsOf(target), {}};
   if (auto type = target.parameters.find("type"); type != target.parameters.end()) {
      one.type = type->second;
   }
   // A body that is left out means no attributes.
   if (!request.body.empty() && request.method != "DELETE") one.body = jsonBody(request);
   ApiChanges changes(*entityManager_, access_);
   unsigned status = changes.add(one);
   changes.apply();
   return {status, {}, {}};
}

ApiAnswer ApiEntities::changeAll(const ApiRequest& request) {
   Rex::Json body = jsonBody(request);
   if (!body.is_object() || body.size() != 1 || !body.contains("changes") ||
       !body["changes"].is_array()) {
      throw ApiError(400, "expected {\"changes\": [...]}");
   }
   ApiChanges changes(*entityManager_, access_);
   size_t index = 0;
   for (const Rex::Json& one : body["changes"]) {
      try {
         changes.add(changeOf(one));
      } catch (const ApiError& error) {
         // The methods of an entity are not those of this resource.
         ApiError said(error.status == 405 ? 400 : error.status, error.what(), error.field);
         bool named = one.is_object() && one.contains("path") && one["path"].is_string();
         said.change = {index, named ? one["path"] : Rex::Json("")};
         throw said;
      }
      ++index;
   }
   changes.apply();
   return {204, {}, {}};
}

}  // namespace Host
