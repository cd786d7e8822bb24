#include "command/convert_command.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "command/persisted_load_options.h"
#include "command/save_command.h"
#include "command/saved_files.h"
#include "import/gltf_loader.h"
#include "loader/plugin_loader.h"
#include "services/host_services.h"

namespace vexo {
namespace {

namespace fs = std::filesystem;

// A folder for the images the input holds inside itself, removed when the
// conversion ends: the saver copies or embeds them from there.
class ImageFolder {
 public:
  ImageFolder() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/vexo-convert-XXXXXX";
    if (::mkdtemp(pattern.data())) path_ = pattern;
  }
  ~ImageFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  ImageFolder(const ImageFolder&) = delete;
  ImageFolder& operator=(const ImageFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The loader's options as the user persisted them, read back through the
// plug-in that owns them (the one the conversion saves with).
int persistedOptions(const ConvertRequest& request, GltfLoadOptions& options, std::ostream& err) {
  HostServices services(&err);
  SdkHost host(services);
  std::string error;
  bool noModule = false;
  std::unique_ptr<LoadedPlugin> plugin = LoadedPlugin::load(pluginPath(request.pluginPath), host, error, &noModule);
  if (!plugin) {
    err << "vexo: " << error << '\n';
    return noModule ? kExitSaveFailed : kExitUsage;
  }
  if (!persistedLoadOptions(host, options, error)) {
    err << "vexo: the load options: " << error << " (see vexo load-options)\n";
    return kExitUsage;
  }
  return kExitOk;
}

}  // namespace

int runConvert(const ConvertRequest& request, std::ostream& out, std::ostream& err) {
  GltfLoadOptions options;
  const int status = persistedOptions(request, options, err);
  return status == kExitOk ? runConvert(request, options, out, err) : status;
}

int runConvert(const ConvertRequest& request, const GltfLoadOptions& options, std::ostream& out, std::ostream& err) {
  ImageFolder images;
  if (images.path().empty()) {
    err << "vexo: cannot make a temporary folder for the input's images\n";
    return kExitSaveFailed;
  }
  SaveRequest save;
  save.scenePath = request.input;
  save.destination = request.destination;
  save.format = request.format;
  save.pluginPath = request.pluginPath;
  // A converted file is the whole scene, not a selection; a later --set may say otherwise.
  save.settings.push_back(std::string(kExportTypeKey) + "=0");
  save.settings.insert(save.settings.end(), request.settings.begin(), request.settings.end());
  const SceneSource load = [&](Scene& scene, std::string& error) {
    GltfLoadResult result;
    const bool loaded = loadGltf(request.input, options, images.path(), scene, result);
    for (const std::string& warning : result.warnings) err << "vexo: warning: " << warning << '\n';
    error = result.error;
    return loaded;
  };
  return runSaveFrom(save, load, out, err);
}

}  // namespace vexo
