// `vexo preview`: a picture of a ".glb" or ".gltf" file, rendered by three.js
// in headless Chromium (the Node.js script in vexo/preview/).
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace vexo {

struct PreviewRequest {
  std::string file;    // the ".glb" or ".gltf" to render
  std::string output;  // the PNG to write
  std::string size = "800x600";
  double time = 0.0;  // seconds; every animation is posed at it
};

struct PictureSize {
  int width = 0;
  int height = 0;
};

// Reads "WIDTHxHEIGHT", each side 1 to kMaxPreviewSide pixels.
constexpr int kMaxPreviewSide = 8192;
std::optional<PictureSize> parsePictureSize(const std::string& text);

// Renders the file and writes the PNG atomically. What the renderer says goes
// to `err`, each line after "vexo: "; the written file is named on `out`.
// Returns 0, 1 when rendering failed, 2 for bad arguments.
int runPreview(const PreviewRequest& request, std::ostream& out, std::ostream& err);

}  // namespace vexo
