#include "command/convert_command.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "command/save_command.h"
#include "command/saved_files.h"
#include "import/gltf_loader.h"

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

}  // namespace

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
