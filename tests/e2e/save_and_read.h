// The round trip most end-to-end tests make: a scene file saved through
// `vexo save`, validated, and read back by the independent reader.
#pragma once

#include <string>
#include <vector>

#include "gltf_reader.h"
#include "vexo_runner.h"

struct SavedScene {
  VexoRun run;
  ReadGltf gltf;
  std::string bytes;  // the written file (the ".gltf" JSON or the whole ".glb")
};

// Writes `scene` to DIR/scene.json, saves it to DIR/`destination` with the
// extra arguments, and expects exit 0, a valid file and a successful read.
SavedScene saveAndRead(const TempDir& dir, const std::string& scene, const std::string& destination,
                       const std::vector<std::string>& extraArgs);
