#include "import/gltf_loader.h"

#include <fstream>
#include <set>
#include <sstream>

#include "import/gltf_import.h"

namespace vexo {
namespace {

// Extensions whose data the loader reads; any other one the file uses is
// left out with a warning.
const std::set<std::string> kReadExtensions = {"KHR_materials_unlit", "KHR_materials_emissive_strength"};
const char* const kDraco = "KHR_draco_mesh_compression";

// Images are kept as the bytes the file holds: the host's image clips read
// their files' headers themselves, and the exporter copies the bytes.
bool keepImageBytes(tinygltf::Image* image, const int, std::string*, std::string*, int, int,
                    const unsigned char* bytes, int size, void*) {
  image->image.assign(bytes, bytes + size);
  image->as_is = true;
  return true;
}

// Whether the file names the Draco extension, looked for in its JSON: such
// files often fail to parse without it, and that failure should say why.
bool mentionsDraco(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string head(1 << 20, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(in.gcount()));
  return head.find(kDraco) != std::string::npos;
}

bool startsWithGlbMagic(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  char magic[4] = {};
  return in.read(magic, 4) && std::string(magic, 4) == "glTF";
}

void addLines(const std::string& text, const std::string& prefix, std::vector<std::string>& lines) {
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    if (!line.empty()) lines.push_back(prefix + line);
}

}  // namespace

bool loadGltf(const std::string& path, const GltfLoadOptions& options, const std::string& imageFolder, Scene& scene,
              GltfLoadResult& result) {
  tinygltf::TinyGLTF reader;
  reader.SetImageLoader(keepImageBytes, nullptr);
  tinygltf::Model model;
  std::string error, warning;
  // Judged by content, not by name: a ".gltf" may well hold a binary file.
  const bool binary = startsWithGlbMagic(path);
  const bool loaded = binary ? reader.LoadBinaryFromFile(&model, &error, &warning, path)
                             : reader.LoadASCIIFromFile(&model, &error, &warning, path);
  addLines(warning, path + ": ", result.warnings);
  if (!loaded && mentionsDraco(path)) {
    result.error = path + ": meshes compressed with " + std::string(kDraco) + " cannot be loaded; decompress the file first";
    return false;
  }
  if (!loaded) {
    std::string reason = error;
    while (!reason.empty() && (reason.back() == '\n' || reason.back() == ' ')) reason.pop_back();
    for (char& c : reason)
      if (c == '\n') c = ';';
    result.error = path + ": cannot load the glTF file: " + (reason.empty() ? "the file cannot be read" : reason);
    return false;
  }
  for (const std::string& extension : model.extensionsRequired) {
    if (extension == kDraco) {
      result.error = path + ": meshes compressed with " + extension + " cannot be loaded; decompress the file first";
      return false;
    }
  }
  for (const std::string& extension : model.extensionsUsed) {
    if (extension == kDraco) {
      result.error = path + ": meshes compressed with " + extension + " cannot be loaded; decompress the file first";
      return false;
    }
    if (!kReadExtensions.count(extension))
      result.warnings.push_back(path + ": extension " + extension + " is not loaded; what it adds is left out");
  }
  return GltfImport(model, options, path, imageFolder, scene, result).run();
}

}  // namespace vexo
