#include "command/save_command.h"

#include <cstdio>
#include <memory>

#include "command/saved_files.h"
#include "engine/scene.h"
#include "loader/plugin_loader.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_host.h"
#include "sdk_impl/sdk_save_target.h"
#include "sdk_impl/sdk_scene.h"
#include "services/host_services.h"

namespace vexo {
namespace {

// Releases a saver instance however the save ends.
struct SaverReleaser {
  void operator()(IVxSaver* saver) const { saver->Release(); }
};

bool endsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string hex(VxResult result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
  return text;
}

bool listsInterface(IVxFactory& factory, std::string_view name) {
  for (unsigned i = 0; i < factory.InterfaceCount(); ++i)
    if (const char* listed = factory.InterfaceName(i); listed && listed == name) return true;
  return false;
}

int usageError(std::ostream& err, const std::string& message) {
  err << "vexo: " << message << '\n';
  return kExitUsage;
}

}  // namespace

const char* saverName(std::string_view format, std::string_view destination) {
  if (format == "gltf" || (format.empty() && endsWith(destination, ".gltf"))) return "gltf.gltf";
  return "gltf.bin";
}

int runSave(const SaveRequest& request, std::ostream& out, std::ostream& err) {
  return runSaveFrom(
      request, [&](Scene& scene, std::string& error) { return readSceneFile(request.scenePath, scene, error); }, out,
      err);
}

int runSaveFrom(const SaveRequest& request, const SceneSource& source, std::ostream& out, std::ostream& err) {
  HostServices services(&err);
  for (const std::string& setting : request.settings) {
    std::size_t equals = setting.find('=');
    if (equals == std::string::npos || equals == 0)
      return usageError(err, "--set takes KEY=VALUE, not \"" + setting + "\"");
    services.userValues.set(setting.substr(0, equals), std::string_view(setting).substr(equals + 1));
  }

  Scene scene;
  std::string error;
  if (!source(scene, error)) return usageError(err, error);
  for (const std::string& ref : request.select) {
    Item* item = findItemByRef(scene, ref, &error);
    if (!item) return usageError(err, "--select " + ref + ": " + error);
    scene.select(*item);
  }

  // Declared before the plug-in and its saver, which may hold its item pointers until released.
  SdkScene sdkScene(scene);
  SdkHost host(services);
  const std::string path = pluginPath(request.pluginPath);
  bool noModule = false;
  std::unique_ptr<LoadedPlugin> plugin = LoadedPlugin::load(path, host, error, &noModule);
  // A module that failed to build itself is a failure of the run, not bad usage.
  if (!plugin && noModule) {
    err << "vexo: " << error << '\n';
    return kExitSaveFailed;
  }
  if (!plugin) return usageError(err, error);

  const char* server = saverName(request.format, request.destination);
  IVxFactory* factory = host.findServer(server);
  if (!factory || !listsInterface(*factory, VX_INTERFACE_SAVER))
    return usageError(err, "plug-in \"" + path + "\" has no saver \"" + server + "\"");
  std::unique_ptr<IVxSaver, SaverReleaser> saver(factory->SpawnSaver());
  // Out of memory, most likely: a resource failure, not bad usage.
  if (!saver) {
    err << "vexo: saver \"" << server << "\" could not be created\n";
    return kExitSaveFailed;
  }

  SaveTarget verify(sdkScene, false);
  VxResult result = saver->Save(&verify, request.destination.c_str());
  if (VxOk(result) && !request.verifyOnly) {
    SaveTarget real(sdkScene, true);
    result = saver->Save(&real, request.destination.c_str());
  }
  saver.reset();
  if (VxFailed(result)) {
    err << "vexo: saving \"" << request.destination << "\" failed with result " << hex(result) << '\n';
    return kExitSaveFailed;
  }
  if (exportsEmptySelection(services.userValues, scene)) {
    err << "vexo: nothing is selected, so the export of the selected items (export type 1, the default) is "
           "empty; add items with --select NAME, or export the whole scene with --set "
        << kExportTypeKey << "=0\n";
  }
  if (!request.verifyOnly) {
    for (const SavedFile& file : savedFiles(server, request.destination))
      out << "vexo: wrote \"" << file.path << "\" (" << file.size << " bytes)\n";
  }
  return kExitOk;
}

}  // namespace vexo
