// IVxMeshService over a scene's MeshStore: the mesh of a "mesh", "triSurf" or
// "meshInst" item, as the mesh engine's SdkMesh.
//
// Items are attached to the mesh engine's service as they are looked up, so
// an instance and its source share one SdkMesh (and so one Ident).
#pragma once

#include <memory>

#include "vexo/vx_mesh.h"

namespace vexo {

class SdkScene;
class SdkMeshService;

class SdkSceneMeshes final : public IVxMeshService {
 public:
  explicit SdkSceneMeshes(SdkScene& scene);
  ~SdkSceneMeshes();
  SdkSceneMeshes(const SdkSceneMeshes&) = delete;
  SdkSceneMeshes& operator=(const SdkSceneMeshes&) = delete;

  // VXR_NOTFOUND for an item of another scene, of another type, or an
  // instance without a source; VXR_BADARG for a null output.
  VxResult MeshLookup(IVxItem* item, IVxMesh** mesh) override;

 private:
  SdkScene& scene_;
  std::unique_ptr<SdkMeshService> meshes_;  // kept here, so the scene's headers stay free of the mesh engine's
};

}  // namespace vexo
