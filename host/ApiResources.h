// The management API's resources, by path:
//
//   /v1/entity/<path>   the entities of the store (host/ApiEntities.h)
//   /v1/paths           the paths of the store
//   /v1/agent           the process
//   /v1/agent/trace     its trace levels, which can be changed
#pragma once

#include <functional>

#include "host/ApiEntities.h"
#include "host/ApiMessage.h"

namespace Host {

class ApiResources {
 public:
   // `agent` says what is to be known of the process.
   ApiResources(ApiEntities entities, std::function<Rex::Json()> agent)
       : entities_(std::move(entities)), agent_(std::move(agent)) {}

   // Serves a request. A refusal is an answer too:
   // {"error": {"path": ..., "field": ..., "message": ...}}. Called outside any handler.
   ApiAnswer serve(const ApiRequest& request);

   static ApiAnswer refusal(const std::string& target, const ApiError& error);

 private:
   ApiAnswer dispatch(const ApiRequest& request);
   static ApiAnswer trace(const ApiRequest& request);

   ApiEntities entities_;
   const std::function<Rex::Json()> agent_;
};

}  // namespace Host
