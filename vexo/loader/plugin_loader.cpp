#include "loader/plugin_loader.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace vexo {
namespace {

constexpr const char* kPluginPathVariable = "VEXO_PLUGIN_PATH";
constexpr const char* kDefaultPluginFile = "gltfio.vx";

std::string lastDlError() {
  const char* message = dlerror();
  return message ? message : "unknown error";
}

}  // namespace

std::unique_ptr<LoadedPlugin> LoadedPlugin::load(const std::string& path, SdkHost& host, std::string& error,
                                                 bool* noModule) {
  if (noModule) *noModule = false;
  dlerror();
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    error = "cannot load plug-in \"" + path + "\": " + lastDlError();
    return nullptr;
  }
  std::unique_ptr<LoadedPlugin> plugin(new LoadedPlugin(path, host, library));
  auto create = reinterpret_cast<VxModuleCreateFn>(dlsym(library, VX_MODULE_ENTRY_NAME));
  if (!create) {
    error = "plug-in \"" + path + "\" has no entry point " VX_MODULE_ENTRY_NAME ": " + lastDlError();
    return nullptr;
  }
  std::size_t before = host.serverNames().size();
  plugin->module_ = create(&host);
  std::vector<std::string> names = host.serverNames();
  plugin->servers_.assign(names.begin() + static_cast<std::ptrdiff_t>(before), names.end());
  if (!plugin->module_) {
    if (noModule) *noModule = true;
    error = "plug-in \"" + path + "\": " VX_MODULE_ENTRY_NAME " returned no module";
    return nullptr;
  }
  return plugin;
}

LoadedPlugin::~LoadedPlugin() {
  if (module_) module_->Release();
  for (const std::string& name : servers_) host_.unregisterServer(name);
  // The option sets live in the module; the host loads one module at a time.
  host_.forgetLoaderOptions();
  dlclose(library_);
}

std::string pluginPath(const std::string& requested) {
  if (!requested.empty()) return requested;
  if (const char* fromEnv = std::getenv(kPluginPathVariable); fromEnv && *fromEnv) return fromEnv;
  std::error_code ec;
  std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return kDefaultPluginFile;
  return (self.parent_path() / kDefaultPluginFile).string();
}

}  // namespace vexo
