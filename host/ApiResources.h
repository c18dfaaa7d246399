// The management API's resources: what is served at which path, with which methods. Where several
// fit, the longest path counts.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/ApiMessage.h"
#include "host/ApiTarget.h"

namespace Host {

struct ApiResource {
   std::string path;                     // "/v1/agent"; with "/" at its end all that is below it
   std::vector<std::string> methods;     // others are answered with 405
   std::vector<std::string> parameters;  // others are refused
   // Called outside any handler. Throws ApiError, and then nothing has changed.
   std::function<ApiAnswer(const ApiRequest&, const ApiTarget&)> serve;
};

class ApiResources {
 public:
   void resourceIs(ApiResource resource) { resources_.push_back(std::move(resource)); }

   // Serves a request. A refusal is an answer too:
   // {"error": {"path": ..., "field": ..., "message": ...}}. Called outside any handler.
   ApiAnswer serve(const ApiRequest& request) const;

   // Why nothing but one resource is served yet; empty when all are.
   void refusalIs(const std::string& words) { refusal_ = words; }
   static constexpr std::string_view always = "/v1/agent";

   static ApiAnswer refusal(const std::string& target, const ApiError& error);

   // Where to go with a request that came through the socket for reading and is to change
   // something.
   void writeSocketIs(const std::string& path) { writeSocket_ = path; }

 private:
   ApiAnswer dispatch(const ApiRequest& request) const;
   const ApiResource& resourceOf(const std::string& path) const;

   std::vector<ApiResource> resources_;
   std::string writeSocket_;
   std::string refusal_;
};

// The body of a request. Throws ApiError when it is no JSON, or not as JsonText wants it.
Rex::Json jsonBody(const ApiRequest& request);

}  // namespace Host
