// IVxHost: what a loaded module reaches of the host, plus the servers it registered.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/item_types.h"
#include "sdk_impl/sdk_log.h"
#include "sdk_impl/sdk_messages.h"
#include "sdk_impl/sdk_scene_service.h"
#include "sdk_impl/sdk_user_values.h"
#include "services/host_services.h"
#include "vexo/vx_module.h"

namespace vexo {

class SdkHost final : public IVxHost {
 public:
  explicit SdkHost(HostServices& services, const TypeRegistry& types = TypeRegistry::builtin());

  HostServices& services() { return services_; }

  // Fails for a null factory, one without a name, or a name already registered.
  VxResult RegisterServer(IVxFactory* factory) override;
  IVxUserValues* UserValues() override { return &userValues_; }
  IVxLogService* LogService() override { return &logService_; }
  IVxMessageService* MessageService() override { return &messageService_; }
  IVxSceneService* SceneService() override { return &sceneService_; }
  // Fails for a null set or an empty loader name.
  VxResult RegisterLoaderOptions(const char* loader, IVxAttributes* options) override;

  // Null when no factory has that name.
  IVxFactory* findServer(std::string_view name) const;
  // Server names in registration order.
  std::vector<std::string> serverNames() const;
  // Forgets a factory, as when its module is unloaded.
  void unregisterServer(std::string_view name);

  // The option set registered for a loader; null when none is.
  IVxAttributes* loaderOptions(std::string_view loader) const;
  // Forgets every loader's option set, as when the module that registered them is unloaded.
  void forgetLoaderOptions() { loaderOptions_.clear(); }

 private:
  HostServices& services_;
  SdkUserValues userValues_;
  SdkLogService logService_;
  SdkMessageService messageService_;
  SdkSceneService sceneService_;
  std::vector<std::pair<std::string, IVxFactory*>> servers_;
  std::vector<std::pair<std::string, IVxAttributes*>> loaderOptions_;
};

}  // namespace vexo
