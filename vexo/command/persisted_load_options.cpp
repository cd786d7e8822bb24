#include "command/persisted_load_options.h"

#include "command/load_options_session.h"
#include "services/configuration.h"

namespace vexo {

bool persistedLoadOptions(SdkHost& host, GltfLoadOptions& options, std::string& error) {
  const std::string path = configFilePath(error);
  Configuration config;
  if (path.empty() || !config.read(path, error)) return false;
  LoadOptionsSession session;
  if (!session.open(host, config, error) || !session.apply(error)) return false;
  const IVxAttributes* registered = host.loaderOptions(kGltfLoaderName);
  if (!registered)
    return error = std::string("the plug-in registered no options for the loader \"") + kGltfLoaderName + "\"", false;
  return toGltfLoadOptions(*registered, options, error);
}

}  // namespace vexo
