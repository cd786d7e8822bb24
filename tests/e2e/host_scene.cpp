#include "host_scene.h"

#include <algorithm>
#include <cstring>

#include "engine/scene.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_locator.h"
#include "vexo/vx_mesh.h"

namespace {

IVxItem* findItem(IVxScene& scene, const std::string& name) {
  IVxItem* found = nullptr;
  for (unsigned i = 0; i < scene.ItemCount(VX_TYPE_ANY); ++i) {
    IVxItem* item = scene.ItemByIndex(VX_TYPE_ANY, i);
    if (name != item->Name()) continue;
    if (found) return nullptr;
    found = item;
  }
  return found;
}

struct NamedMap {
  std::string name;
  VxMapID id;
};

std::vector<NamedMap> mapsOf(IVxMesh& mesh, std::uint32_t type) {
  std::vector<NamedMap> maps;
  for (unsigned i = 0; i < mesh.MapCount(type); ++i) {
    const char* name = nullptr;
    VxMapID id = VX_MAP_NONE;
    if (VxOk(mesh.MapByIndex(type, i, &name, &id))) maps.push_back({name, id});
  }
  return maps;
}

class CornerCollector : public IVxPolygonVisitor {
 public:
  CornerCollector(IVxMesh& mesh, std::vector<HostCorner>& corners) : mesh_(mesh), corners_(corners) {
    const std::vector<NamedMap> normals = mapsOf(mesh, VX_VMAP_NORMAL);
    if (!normals.empty()) normal_ = normals.front().id;
    uvs_ = mapsOf(mesh, VX_VMAP_TEXTUREUV);
    std::stable_sort(uvs_.begin(), uvs_.end(), [](const NamedMap& a, const NamedMap& b) { return a.name < b.name; });
    rgb_ = mapsOf(mesh, VX_VMAP_RGB);
    rgba_ = mapsOf(mesh, VX_VMAP_RGBA);
    const std::vector<NamedMap> bases = mapsOf(mesh, VX_VMAP_TBASIS);
    if (!bases.empty()) basis_ = bases.front().id;
  }

  VxResult Polygon(const IVxPolygon& polygon) override {
    for (unsigned t = 0; t < polygon.TriangleCount(); ++t) {
      unsigned points[3];
      if (VxFailed(polygon.Triangle(t, points))) return VXR_FAILED;
      for (unsigned point : points) corners_.push_back(corner(polygon, point));
    }
    return VXR_OK;
  }

 private:
  HostCorner corner(const IVxPolygon& polygon, unsigned point) const {
    HostCorner corner;
    corner.tag = polygon.Tag(VX_PTAG_MATERIAL);
    mesh_.PointPosition(point, corner.position.data());
    float values[6] = {};
    if (normal_ != VX_MAP_NONE && VxOk(polygon.MapEvaluate(normal_, point, values)))
      corner.normal = {values[0], values[1], values[2]};
    else
      polygon.CornerNormal(point, corner.normal.data());
    for (const NamedMap& map : uvs_) {
      std::array<float, 2> uv{};
      polygon.MapEvaluate(map.id, point, uv.data());
      corner.uvs.push_back(uv);
    }
    for (const NamedMap& map : rgb_) {
      std::array<float, 4> colour{};
      if (VxOk(polygon.MapEvaluate(map.id, point, colour.data()))) colour[3] = 1.0f;
      corner.colours.push_back(colour);
    }
    for (const NamedMap& map : rgba_) {
      std::array<float, 4> colour{};
      polygon.MapEvaluate(map.id, point, colour.data());
      corner.colours.push_back(colour);
    }
    if (basis_ != VX_MAP_NONE) polygon.MapEvaluate(basis_, point, corner.tangentBasis.data());
    return corner;
  }

  IVxMesh& mesh_;
  std::vector<HostCorner>& corners_;
  VxMapID normal_ = VX_MAP_NONE, basis_ = VX_MAP_NONE;
  std::vector<NamedMap> uvs_, rgb_, rgba_;
};

}  // namespace

struct HostScene::Impl {
  vexo::Scene scene;
  std::unique_ptr<vexo::SdkScene> sdk;
};

HostScene::HostScene(const std::string& path) : impl_(std::make_unique<Impl>()) {
  if (!vexo::readSceneFile(path, impl_->scene, error_)) return;
  impl_->sdk = std::make_unique<vexo::SdkScene>(impl_->scene);
}

HostScene::~HostScene() = default;

bool HostScene::worldMatrix(const std::string& name, std::array<double, 16>& matrix) const {
  if (!impl_->sdk) return false;
  IVxScene& scene = *impl_->sdk;
  IVxItem* found = findItem(scene, name);
  IVxLocatorService* locators = scene.LocatorService();
  if (!found || !locators) return false;
  // An item that is no locator sits in the frame of its nearest locator ancestor.
  IVxLocator* locator = nullptr;
  for (IVxItem* item = found; item && !locator; item = item->Parent())
    if (VxFailed(locators->LocatorLookup(item, &locator))) locator = nullptr;
  if (!locator) {
    matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    return true;
  }
  IVxChannelRead* read = nullptr;
  if (VxFailed(scene.ChannelRead("edit", scene.Time(), &read))) return false;
  const bool ok = VxOk(locator->WorldMatrix(read, matrix.data()));
  read->Release();
  return ok;
}

bool HostScene::meshCorners(const std::string& name, std::vector<HostCorner>& corners) const {
  if (!impl_->sdk) return false;
  IVxScene& scene = *impl_->sdk;
  IVxItem* item = findItem(scene, name);
  IVxMeshService* meshes = scene.MeshService();
  IVxMesh* mesh = nullptr;
  if (!item || !meshes || VxFailed(meshes->MeshLookup(item, &mesh))) return false;
  CornerCollector collector(*mesh, corners);
  return VxOk(mesh->VisitPolygons(&collector));
}
