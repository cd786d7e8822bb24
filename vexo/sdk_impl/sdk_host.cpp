#include "sdk_impl/sdk_host.h"

#include <algorithm>

namespace vexo {

SdkHost::SdkHost(HostServices& services, const TypeRegistry& types)
    : services_(services),
      userValues_(services.userValues),
      logService_(services.log),
      messageService_(services.messages),
      sceneService_(types) {}

VxResult SdkHost::RegisterServer(IVxFactory* factory) {
  if (!factory || !factory->ServerName() || !*factory->ServerName()) return VXR_BADARG;
  if (findServer(factory->ServerName())) return VXR_FAILED;
  servers_.emplace_back(factory->ServerName(), factory);
  return VXR_OK;
}

IVxFactory* SdkHost::findServer(std::string_view name) const {
  for (const auto& [serverName, factory] : servers_)
    if (serverName == name) return factory;
  return nullptr;
}

std::vector<std::string> SdkHost::serverNames() const {
  std::vector<std::string> names;
  for (const auto& server : servers_) names.push_back(server.first);
  return names;
}

void SdkHost::unregisterServer(std::string_view name) {
  servers_.erase(std::remove_if(servers_.begin(), servers_.end(),
                                [name](const auto& server) { return server.first == name; }),
                 servers_.end());
}

VxResult SdkHost::RegisterLoaderOptions(const char* loader, IVxAttributes* options) {
  if (!loader || !*loader || !options) return VXR_BADARG;
  for (auto& [name, registered] : loaderOptions_)
    if (name == loader) return registered = options, VXR_OK;
  try {
    loaderOptions_.emplace_back(loader, options);
  } catch (...) {
    return VXR_FAILED;  // no exception into the module that called
  }
  return VXR_OK;
}

IVxAttributes* SdkHost::loaderOptions(std::string_view loader) const {
  for (const auto& [name, options] : loaderOptions_)
    if (name == loader) return options;
  return nullptr;
}

}  // namespace vexo
