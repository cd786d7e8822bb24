// Loads a plug-in file the way the desktop host does: open the shared
// library, call its module entry with the host, keep the module.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "sdk_impl/sdk_host.h"
#include "vexo/vx_module.h"

namespace vexo {

class LoadedPlugin {
 public:
  // Null on failure, with `error` naming the file and the reason. `noModule`,
  // when given, tells whether the library loaded but its entry returned no
  // module (the module failed to build itself, out of memory for one).
  static std::unique_ptr<LoadedPlugin> load(const std::string& path, SdkHost& host, std::string& error,
                                            bool* noModule = nullptr);

  // Releases the module, forgets its servers and closes the library. No
  // server instance of the module may be alive.
  ~LoadedPlugin();
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;

  IVxModule& module() const { return *module_; }
  const std::string& path() const { return path_; }
  // The servers the module registered while it loaded.
  const std::vector<std::string>& servers() const { return servers_; }

 private:
  LoadedPlugin(std::string path, SdkHost& host, void* library) : path_(std::move(path)), host_(host), library_(library) {}

  std::string path_;
  SdkHost& host_;
  void* library_;
  IVxModule* module_ = nullptr;
  std::vector<std::string> servers_;
};

// The plug-in file to load: `requested` when given, else the environment
// variable VEXO_PLUGIN_PATH when set, else gltfio.vx beside the running executable.
std::string pluginPath(const std::string& requested);

}  // namespace vexo
