// The operator's configuration as a whole through the management API.
//
//   /v1/config        what of it differs from the defaults
//   /v1/config/save   writes that to the configuration file
#pragma once

#include "host/ApiLimits.h"
#include "host/ApiResources.h"
#include "host/ConfigFile.h"

namespace Host {

// Serves them in `resources`, which `config` and `file` have to outlive. Without a file nothing can
// be saved.
void serveConfig(ApiResources& resources, const OperatorConfig& config);
void serveConfig(ApiResources& resources, const OperatorConfig& config, const ConfigFile& file,
                 const ApiLimits& limits = {});

}  // namespace Host
