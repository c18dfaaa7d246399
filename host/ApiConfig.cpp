#include "host/ApiConfig.h"

#include "host/StartError.h"

namespace Host {

void serveConfig(ApiResources& resources, const OperatorConfig& config, const ConfigFile& file) {
   resources.resourceIs({"/v1/config", {"GET"}, {}, [&config](const ApiRequest&, const ApiTarget&) {
                            return ApiAnswer{200, config.differences(), {}};
                         }});
   auto save = [&config, &file](const ApiRequest& request, const ApiTarget&) {
      if (!request.body.empty()) throw ApiError(400, "this takes no body");
      try {
         file.save(config);
      } catch (const StartError& error) {
         throw ApiError(500, error.what());
      }
      return ApiAnswer{200, {{"file", file.path()}}, {}};
   };
   resources.resourceIs({"/v1/config/save", {"POST"}, {}, save});
}

}  // namespace Host
