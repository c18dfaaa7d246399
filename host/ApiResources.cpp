#include "host/ApiResources.h"

#include "Rex/Printable.h"
#include "host/TraceLevels.h"

namespace Host {
namespace {

void requireGet(const ApiRequest& request) {
   if (request.method == "GET") return;
   throw ApiError(405, "only GET is served here, not " + request.method, {}, "GET");
}

void requireNoMoreThan(const ApiTarget& target, std::initializer_list<std::string_view> known) {
   for (const auto& [name, value] : target.parameters) {
      bool found = false;
      for (std::string_view one : known) found = found || one == name;
      if (!found) throw ApiError(400, "unknown parameter '" + Rex::printable(name) + "'", name);
   }
}

}  // namespace

ApiAnswer ApiResources::serve(const ApiRequest& request) {
   try {
      return dispatch(request);
   } catch (const ApiError& error) {
      return refusal(request.target, error);
   }
}

ApiAnswer ApiResources::refusal(const std::string& target, const ApiError& error) {
   std::string path = target.substr(0, target.find('?'));
   constexpr std::string_view entity = "/v1/entity/";
   if (path.starts_with(entity)) path.erase(0, entity.size());
   Rex::Json words{{"path", path}};
   if (!error.field.empty()) words["field"] = error.field;
   words["message"] = error.what();
   return {error.status, {{"error", words}}, error.allow};
}

ApiAnswer ApiResources::dispatch(const ApiRequest& request) {
   ApiTarget target = ApiTarget::parse(request.target);
   const Statestore::Steps& steps = target.steps;
   if (steps.size() > 2 && steps[0] == "v1" && steps[1] == "entity") {
      requireNoMoreThan(target, {"depth", "type"});
      return entities_.serve(request.method, {steps.begin() + 2, steps.end()}, target,
                             request.body);
   }
   requireNoMoreThan(target, {});
   if (steps == Statestore::Steps{"v1", "paths"}) {
      requireGet(request);
      return {200, entities_.paths(), {}};
   }
   if (steps == Statestore::Steps{"v1", "agent"}) {
      requireGet(request);
      return {200, agent_(), {}};
   }
   if (steps == Statestore::Steps{"v1", "agent", "trace"}) return trace(request);
   throw ApiError(404, "there are /v1/entity/<path>, /v1/paths, /v1/agent and /v1/agent/trace");
}

ApiAnswer ApiResources::trace(const ApiRequest& request) {
   if (request.method == "GET") return {200, traceToJson(), {}};
   if (request.method != "PATCH" && request.method != "PUT") {
      throw ApiError(405, "the trace knows GET, PATCH and PUT, not " + request.method, {},
                     "GET, PATCH, PUT");
   }
   Rex::Json json = Rex::Json::parse(request.body, nullptr, false);
   if (json.is_discarded()) throw ApiError(400, "the body is not JSON");
   try {
      traceFromJson(json, request.method == "PUT");
   } catch (const Rex::JsonError& error) {
      throw ApiError(400, error.what(), error.path());
   }
   return {204, {}, {}};
}

}  // namespace Host
