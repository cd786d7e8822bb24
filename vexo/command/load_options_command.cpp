#include "command/load_options_command.h"

#include <memory>

#include "command/load_options_session.h"
#include "command/save_command.h"
#include "loader/plugin_loader.h"
#include "services/configuration.h"
#include "services/host_services.h"

namespace vexo {
namespace {

int usageError(std::ostream& err, const std::string& message) {
  err << "vexo: " << message << '\n';
  return kExitUsage;
}

}  // namespace

int runLoadOptions(const LoadOptionsRequest& request, std::ostream& out, std::ostream& err) {
  std::string error;
  const std::string configPath = configFilePath(error);
  if (configPath.empty()) return usageError(err, error);
  Configuration config;
  if (!config.read(configPath, error)) return usageError(err, error);

  HostServices services(&err);
  SdkHost host(services);
  const std::string path = pluginPath(request.pluginPath);
  bool noModule = false;
  std::unique_ptr<LoadedPlugin> plugin = LoadedPlugin::load(path, host, error, &noModule);
  if (!plugin) {
    err << "vexo: " << error << '\n';
    return noModule ? kExitSaveFailed : kExitUsage;
  }

  // Released before the plug-in that holds its code.
  LoadOptionsSession session;
  if (!session.open(host, config, error)) return usageError(err, error);
  for (const std::string& setting : request.settings) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0)
      return usageError(err, "--set takes NAME=VALUE, not \"" + setting + "\"");
    if (!session.setFromText(setting.substr(0, equals), setting.substr(equals + 1), error))
      return usageError(err, "--set " + setting + ": " + error);
  }
  GltfLoadOptions checked;
  if (!session.check(checked, error)) return usageError(err, "--set: " + error);
  if (!session.apply(error)) {
    err << "vexo: " << error << '\n';
    return kExitSaveFailed;
  }
  if (!request.settings.empty()) {
    if (!session.store(config, error)) {
      err << "vexo: " << error << '\n';
      return kExitSaveFailed;
    }
    if (!config.write(configPath, error)) {
      err << "vexo: " << error << '\n';
      return kExitSaveFailed;
    }
  }

  IVxCommandServer& command = session.command();
  for (unsigned i = 0; i < command.AttrCount(); ++i)
    out << command.AttrName(i) << " = " << attributeValueText(command, i) << '\n';
  if (!request.settings.empty()) out << "vexo: saved the load options to \"" << configPath << "\"\n";
  return kExitOk;
}

}  // namespace vexo
