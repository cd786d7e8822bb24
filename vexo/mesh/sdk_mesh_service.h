// The host's mesh service: which mesh each mesh-carrying item answers with.
//
// The item model attaches a MeshData to each "mesh" and "triSurf" item, and
// to each "meshInst" item the MeshData of its source, so that instances hand
// out the very same IVxMesh (and so the same Ident) as their source.
#pragma once

#include <memory>
#include <unordered_map>

#include "mesh/sdk_mesh.h"
#include "vexo/vx_mesh.h"

namespace vexo {

class SdkMeshService final : public IVxMeshService {
 public:
  // `mesh` must outlive the service; attaching an item again replaces its mesh.
  void attach(IVxItem* item, MeshData* mesh);
  void detach(IVxItem* item);
  // The item's mesh, or null.
  SdkMesh* meshOf(IVxItem* item) const;

  VxResult MeshLookup(IVxItem* item, IVxMesh** mesh) override;

 private:
  std::unordered_map<const MeshData*, std::unique_ptr<SdkMesh>> adapters_;
  std::unordered_map<IVxItem*, SdkMesh*> items_;
};

}  // namespace vexo
