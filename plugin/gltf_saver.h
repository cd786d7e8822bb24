// The two scene savers and the export driver they share.
#pragma once

#include <string>

#include "core/export_context.h"
#include "host/scene_saver.h"

class GltfSaverBase : public CVxSceneSaver {
 public:
  // The last result of each saver class, module-wide: [0] ".glb", [1] ".gltf".
  static VxResult lastResult[2];

 protected:
  GltfSaverBase(std::int32_t outputForm, VxResult* resultCell);
  VxResult ss_Save(const CVxUser_Scene& scene, const char* destination) override;

 private:
  void InitSaver(const CVxUser_Scene& scene);
  VxResult RunSaver();
  void readRenderResolution();

  ExportContext context_;
  bool initialised_ = false;
  std::string destination_;
  // The render resolution, read when cameras are exported.
  std::int32_t renderWidth_ = 720;
  std::int32_t renderHeight_ = 480;

  const std::int32_t outputForm_;  // 0 one ".glb", 1 ".gltf" with ".bin"
  VxResult* const resultCell_;
  std::int32_t initStatus_ = 0;
};

// "glTF v2 .glb": one binary file.
class GltfSaver : public GltfSaverBase {
 public:
  GltfSaver() : GltfSaverBase(0, &lastResult[0]) {}
};

// "glTF v2 .gltf": a JSON file with its ".bin" beside it.
class GltfSaverGLTF : public GltfSaverBase {
 public:
  GltfSaverGLTF() : GltfSaverBase(1, &lastResult[1]) {}
};
