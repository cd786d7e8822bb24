// The options the host's glTF loader uses now, for whoever runs it.
#pragma once

#include <string>

#include "import/gltf_load_options.h"
#include "sdk_impl/sdk_host.h"

namespace vexo {

// The host's defaults overridden by the values persisted in the
// configuration file (see configFilePath()), read back through the loaded
// plug-in's visitor into its load-options command, executed into the option
// set it registered for "gltfLoader", and read from that set. False, with
// `error` saying why, when the file cannot be read, a persisted value is
// refused, or the plug-in offers no such command, visitor or set.
bool persistedLoadOptions(SdkHost& host, GltfLoadOptions& options, std::string& error);

}  // namespace vexo
