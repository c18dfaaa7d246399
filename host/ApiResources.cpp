#include "host/ApiResources.h"

#include <algorithm>

#include "Rex/Printable.h"
#include "host/JsonText.h"

namespace Host {
namespace {

bool fits(const ApiResource& resource, const std::string& path) {
   if (!resource.path.ends_with('/')) return path == resource.path;
   return path.starts_with(resource.path) && path.size() > resource.path.size();
}

std::string joined(const std::vector<std::string>& words) {
   std::string all;
   for (const std::string& word : words) all += (all.empty() ? "" : ", ") + word;
   return all;
}

bool contains(const std::vector<std::string>& words, const std::string& word) {
   return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

ApiAnswer ApiResources::serve(const ApiRequest& request) const {
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
   Rex::Json words = Rex::Json::object();
   if (error.change) words["change"] = error.change->index;
   words["path"] = error.change ? error.change->path : path;
   if (!error.field.empty()) words["field"] = error.field;
   words["message"] = error.what();
   return {error.status, {{"error", words}}, error.allow};
}

ApiAnswer ApiResources::dispatch(const ApiRequest& request) const {
   if (!request.mayWrite && request.method != "GET") {
      throw ApiError(
          403, "this socket is for GET alone; what changes something goes to " + writeSocket_);
   }
   ApiTarget target = ApiTarget::parse(request.target);
   std::string path = "/" + Statestore::encodePath(target.steps);
   if (!refusal_.empty() && path != always) throw ApiError(503, refusal_);
   const ApiResource& resource = resourceOf(path);
   for (const auto& [name, value] : target.parameters) {
      if (contains(resource.parameters, name)) continue;
      throw ApiError(400, "unknown parameter '" + Rex::printable(name) + "'", name);
   }
   if (!contains(resource.methods, request.method)) {
      std::string allowed = joined(resource.methods);
      throw ApiError(405,
                     "this knows " + allowed + ", not '" + Rex::printable(request.method) + "'", {},
                     allowed);
   }
   return resource.serve(request, target);
}

const ApiResource& ApiResources::resourceOf(const std::string& path) const {
   const ApiResource* best = nullptr;
   std::vector<std::string> all;
   for (const ApiResource& resource : resources_) {
      all.push_back(resource.path + (resource.path.ends_with('/') ? "..." : ""));
      if (!fits(resource, path)) continue;
      if (!best || best->path.size() < resource.path.size()) best = &resource;
   }
   if (!best) throw ApiError(404, "there are " + joined(all));
   return *best;
}

Rex::Json jsonBody(const ApiRequest& request) {
   try {
      return JsonText(request.body, JsonText::Comments::refused).json();
   } catch (const JsonTextError& error) {
      throw ApiError(400, "no JSON that is read here, in line " + std::to_string(error.line) +
                              " of the body: " + error.what());
   }
}

}  // namespace Host
