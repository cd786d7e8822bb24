// The host's glTF loader "gltfLoader": reads a ".gltf" or ".glb" file into a
// scene, as the scene-file reader does for scene files (see docs/import.md).
#pragma once

#include <string>
#include <vector>

#include "engine/scene.h"
#include "import/gltf_load_options.h"

namespace vexo {

// The loader's server name.
inline constexpr const char* kGltfLoaderName = "gltfLoader";

struct GltfLoadResult {
  std::vector<std::string> warnings;  // each "FILE: what was left out or changed"
  std::string error;                  // "FILE: why it cannot be loaded" when the load failed
};

// Loads the file at `path` into `scene` (new items are added after the
// scene's own) as `options` say. Images held inside the file (a ".glb"'s
// buffer views, data URIs) are written into the existing folder
// `imageFolder`, where the scene's image clips find them; images in files of
// their own are used where they are. Returns false with `result.error` set for
// a file that cannot be read or holds data out of range; the scene may then
// hold part of the file.
bool loadGltf(const std::string& path, const GltfLoadOptions& options, const std::string& imageFolder, Scene& scene,
              GltfLoadResult& result);

}  // namespace vexo
