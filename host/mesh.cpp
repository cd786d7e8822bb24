#include "mesh.h"

CVxMesh::CVxMesh(const CVxUser_Scene& scene, const CVxUser_Item& item) {
  IVxMeshService* service = scene.test() ? scene.raw()->MeshService() : nullptr;
  if (!service || !item.test() || VxFailed(service->MeshLookup(item.raw(), &mesh_))) mesh_ = nullptr;
}

unsigned CVxMesh::polygonTriangleCount(unsigned polygon) const {
  unsigned count = 0;
  if (!mesh_ || VxFailed(mesh_->PolygonTriangleCount(polygon, &count))) return 0;
  return count;
}

std::vector<CVxMapEntry> CVxMesh::maps(std::uint32_t type) const {
  std::vector<CVxMapEntry> result;
  const unsigned count = mesh_ ? mesh_->MapCount(type) : 0;
  for (unsigned i = 0; i < count; ++i) {
    const char* name = nullptr;
    VxMapID id = VX_MAP_NONE;
    if (VxFailed(mesh_->MapByIndex(type, i, &name, &id))) id = VX_MAP_NONE;
    result.push_back({name ? name : "", id});
  }
  return result;
}

namespace {

// Hands the host's polygons to the module's visitor.
class PolygonVisitorAdapter : public IVxPolygonVisitor {
 public:
  explicit PolygonVisitorAdapter(CVxPolygonVisitor& visitor) : visitor_(visitor) {}
  VxResult Polygon(const IVxPolygon& polygon) override {
    return visitor_.polygon(CVxPolygon(polygon)) ? VXR_OK : VXR_FAILED;
  }

 private:
  CVxPolygonVisitor& visitor_;
};

}  // namespace

bool CVxMesh::visitPolygons(CVxPolygonVisitor& visitor) const {
  if (!mesh_) return false;
  PolygonVisitorAdapter adapter(visitor);
  return VxOk(mesh_->VisitPolygons(&adapter));
}
