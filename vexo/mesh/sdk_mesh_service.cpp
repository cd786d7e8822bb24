#include "mesh/sdk_mesh_service.h"

namespace vexo {

void SdkMeshService::attach(IVxItem* item, MeshData* mesh) {
  if (!item || !mesh) return;
  std::unique_ptr<SdkMesh>& adapter = adapters_[mesh];
  if (!adapter) adapter = std::make_unique<SdkMesh>(*mesh);
  items_[item] = adapter.get();
}

void SdkMeshService::detach(IVxItem* item) { items_.erase(item); }

SdkMesh* SdkMeshService::meshOf(IVxItem* item) const {
  auto it = items_.find(item);
  return it == items_.end() ? nullptr : it->second;
}

VxResult SdkMeshService::MeshLookup(IVxItem* item, IVxMesh** mesh) {
  if (!mesh) return VXR_BADARG;
  SdkMesh* found = meshOf(item);
  if (!found) return VXR_NOTFOUND;
  *mesh = found;
  return VXR_OK;
}

}  // namespace vexo
