#include "sdk_impl/sdk_scene_meshes.h"

#include "mesh/sdk_mesh_service.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {

SdkSceneMeshes::SdkSceneMeshes(SdkScene& scene) : scene_(scene), meshes_(std::make_unique<SdkMeshService>()) {}

SdkSceneMeshes::~SdkSceneMeshes() = default;

VxResult SdkSceneMeshes::MeshLookup(IVxItem* item, IVxMesh** mesh) {
  if (!mesh) return VXR_BADARG;
  // Resolved on every call: an instance may have been given a source since.
  Item* engineItem = scene_.unwrap(item);
  MeshData* data = engineItem ? scene_.scene().meshes().meshOf(*engineItem) : nullptr;
  if (!data) return VXR_NOTFOUND;
  const SdkMesh* attached = meshes_->meshOf(item);
  if (!attached || &attached->data() != data) meshes_->attach(item, data);
  return meshes_->MeshLookup(item, mesh);
}

}  // namespace vexo
