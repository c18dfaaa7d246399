#include "host/ApiConfig.h"

#include "Rex/Context.h"
#include "host/StartError.h"
#include "host/TokenBucket.h"

namespace Host {
namespace {

double now() {
   return Rex::Context::current().clock()->now();
}

}  // namespace

void serveConfig(ApiResources& resources, const OperatorConfig& config) {
   resources.resourceIs({"/v1/config", {"GET"}, {}, [&config](const ApiRequest&, const ApiTarget&) {
                            return ApiAnswer{200, config.differences(), {}};
                         }});
}

void serveConfig(ApiResources& resources, const OperatorConfig& config, const ConfigFile& file,
                 const ApiLimits& limits) {
   serveConfig(resources, config);
   // Everything waits for the disk, so it is asked for no more than people and scripts need.
   auto writes = std::make_shared<TokenBucket>(limits.saveBurst, limits.savesPerSecond, now());
   auto save = [&config, &file, writes](const ApiRequest& request, const ApiTarget&) {
      if (!request.body.empty()) throw ApiError(400, "this takes no body");
      const ApiAnswer saved{200, {{"file", file.path()}}, {}};
      if (file.holds(config)) return saved;
      if (!writes->take(now())) {
         throw ApiError(429, "the configuration is saved too often; wait a second");
      }
      try {
         file.save(config);
      } catch (const StartError& error) {
         throw ApiError(500, error.what());
      }
      return saved;
   };
   resources.resourceIs({"/v1/config/save", {"POST"}, {}, save});
}

}  // namespace Host
