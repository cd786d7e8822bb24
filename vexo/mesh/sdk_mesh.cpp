#include "mesh/sdk_mesh.h"

#include <algorithm>
#include <vector>

namespace vexo {
namespace {

void copyVec(const Vec3& v, double out[3]) {
  out[0] = v.x;
  out[1] = v.y;
  out[2] = v.z;
}

void copyValues(const float* from, unsigned count, float* to) {
  for (unsigned i = 0; i < count; ++i) to[i] = from[i];
}

// The polygon under the walk. Per map it keeps the range of the map's corner
// values that fall into the current polygon, moved forward polygon by
// polygon, so a corner lookup never searches the whole map.
class WalkPolygon final : public IVxPolygon {
 public:
  explicit WalkPolygon(const MeshData& mesh) : mesh_(mesh), geometry_(mesh.geometry()), maps_(mesh.mapCount()) {
    for (std::size_t m = 0; m < maps_.size(); ++m) {
      const VertexMap& map = mesh.map(m);
      const std::vector<std::uint32_t>& ids = map.cornerIds();
      maps_[m].map = &map;
      maps_[m].ids = ids.data();
      maps_[m].idCount = ids.size();
      maps_[m].dimension = map.dimension();
      if (!ids.empty()) withCorners_.push_back(m);
    }
  }

  void moveTo(std::uint32_t polygon) {
    index_ = polygon;
    first_ = mesh_.firstCorner(polygon);
    size_ = mesh_.polygonSize(polygon);
    points_ = mesh_.polygonPoints(polygon);
    lastPoint_ = points_[0];
    lastSlot_ = 0;
    for (std::size_t m : withCorners_) {
      MapView& v = maps_[m];
      std::size_t i = v.end;
      while (i < v.idCount && v.ids[i] < first_) ++i;
      v.begin = v.end = i;
      while (v.end < v.idCount && v.ids[v.end] < first_ + size_) ++v.end;
    }
  }

  unsigned Index() const override { return index_; }
  unsigned VertexCount() const override { return size_; }
  unsigned PointByIndex(unsigned vertex) const override { return vertex < size_ ? points_[vertex] : 0u; }

  const char* Tag(std::uint32_t tagType) const override { return mesh_.polygonTag(index_, tagType).c_str(); }

  unsigned TriangleCount() const override { return size_ - 2; }

  VxResult Triangle(unsigned index, unsigned points[3]) const override {
    if (!points) return VXR_BADARG;
    if (index >= size_ - 2) return VXR_OUTOFBOUNDS;
    const std::uint32_t* t = geometry_.triangles.data() + (std::size_t(mesh_.firstTriangle(index_)) + index) * 3;
    points[0] = t[0];
    points[1] = t[1];
    points[2] = t[2];
    return VXR_OK;
  }

  VxResult Normal(double normal[3]) const override {
    if (!normal) return VXR_BADARG;
    copyVec(geometry_.polygonNormals[index_], normal);
    return VXR_OK;
  }

  VxResult CornerNormal(unsigned point, double normal[3]) const override {
    if (!normal) return VXR_BADARG;
    const unsigned slot = slotOf(point);
    if (slot == size_) return VXR_NOTFOUND;
    copyVec(geometry_.cornerNormal(first_ + slot), normal);
    return VXR_OK;
  }

  VxResult MapEvaluate(VxMapID map, unsigned point, float* values) const override {
    if (map == VX_MAP_NONE || map > maps_.size() || !values) return VXR_BADARG;
    const unsigned slot = slotOf(point);
    if (slot == size_) return VXR_NOTFOUND;
    const MapView& v = maps_[std::size_t(map - 1)];
    if (v.end > v.begin) {
      // Every corner of the polygon has a value: the slot is the entry.
      if (v.end - v.begin == size_) {
        copyValues(v.map->cornerValueAt(v.begin + slot), v.dimension, values);
        return VXR_OK;
      }
      const std::uint32_t corner = first_ + slot;
      for (std::size_t i = v.begin; i < v.end; ++i) {
        if (v.ids[i] == corner) {
          copyValues(v.map->cornerValueAt(i), v.dimension, values);
          return VXR_OK;
        }
      }
    }
    if (const float* p = v.map->pointValue(point)) {
      copyValues(p, v.dimension, values);
      return VXR_OK;
    }
    return VXR_NOTFOUND;
  }

  VxResult MapEvaluateCorners(VxMapID map, float* values, unsigned char* found) const override {
    if (map == VX_MAP_NONE || map > maps_.size() || !values || !found) return VXR_BADARG;
    const MapView& v = maps_[std::size_t(map - 1)];
    switch (v.dimension) {
      case 2:
        evaluateCorners<2>(v, values, found);
        break;
      case 3:
        evaluateCorners<3>(v, values, found);
        break;
      case 4:
        evaluateCorners<4>(v, values, found);
        break;
      default:
        evaluateCorners<0>(v, values, found);
    }
    return VXR_OK;
  }

 private:
  struct MapView {
    const VertexMap* map = nullptr;
    const std::uint32_t* ids = nullptr;
    std::size_t idCount = 0;
    std::size_t begin = 0, end = 0;  // the current polygon's corner entries
    unsigned dimension = 0;
  };

  // Every corner's value, its own or its point's; `D` is the map's dimension
  // when known at compile time (0: read it from the map).
  template <unsigned D>
  void evaluateCorners(const MapView& v, float* values, unsigned char* found) const {
    const unsigned dimension = D != 0 ? D : v.dimension;
    const std::size_t own = v.end - v.begin;
    for (unsigned slot = 0; slot < size_; ++slot, values += dimension) {
      const float* value = nullptr;
      if (own == size_) {
        value = v.map->cornerValueAt(v.begin + slot);
      } else {
        for (std::size_t i = v.begin; i < v.end && !value; ++i)
          if (v.ids[i] == first_ + slot) value = v.map->cornerValueAt(i);
        if (!value) value = v.map->pointValue(points_[slot]);
      }
      found[slot] = value != nullptr;
      if (value)
        for (unsigned d = 0; d < dimension; ++d) values[d] = value[d];
    }
  }

  // The exporter asks several questions about one corner in a row.
  unsigned slotOf(unsigned point) const {
    if (point == lastPoint_) return lastSlot_;
    unsigned k = 0;
    while (k < size_ && points_[k] != point) ++k;
    if (k < size_) {
      lastPoint_ = point;
      lastSlot_ = k;
    }
    return k;
  }

  const MeshData& mesh_;
  const MeshGeometry& geometry_;
  std::vector<MapView> maps_;
  std::vector<std::size_t> withCorners_;
  std::uint32_t index_ = 0, first_ = 0;
  unsigned size_ = 0;
  const std::uint32_t* points_ = nullptr;
  mutable unsigned lastPoint_ = 0, lastSlot_ = 0;
};

}  // namespace

const char* SdkMesh::Ident() const { return mesh_->ident().c_str(); }

unsigned SdkMesh::PointCount() { return unsigned(mesh_->pointCount()); }

unsigned SdkMesh::PolygonCount() { return unsigned(mesh_->polygonCount()); }

VxResult SdkMesh::PointPosition(unsigned point, double position[3]) {
  if (!position) return VXR_BADARG;
  if (point >= mesh_->pointCount()) return VXR_OUTOFBOUNDS;
  copyVec(mesh_->point(point), position);
  return VXR_OK;
}

VxResult SdkMesh::PolygonTriangleCount(unsigned polygon, unsigned* count) {
  if (!count) return VXR_BADARG;
  if (polygon >= mesh_->polygonCount()) return VXR_OUTOFBOUNDS;
  *count = mesh_->polygonSize(polygon) - 2;
  return VXR_OK;
}

unsigned SdkMesh::MapCount(std::uint32_t type) {
  unsigned count = 0;
  for (std::size_t m = 0; m < mesh_->mapCount(); ++m) count += mesh_->map(m).type() == type;
  return count;
}

VxResult SdkMesh::MapByIndex(std::uint32_t type, unsigned index, const char** name, VxMapID* map) {
  if (!name || !map) return VXR_BADARG;
  for (std::size_t m = 0; m < mesh_->mapCount(); ++m) {
    if (mesh_->map(m).type() != type) continue;
    if (index-- == 0) {
      *name = mesh_->map(m).name().c_str();
      *map = VxMapID(m + 1);
      return VXR_OK;
    }
  }
  return VXR_OUTOFBOUNDS;
}

VxResult SdkMesh::MapLookup(std::uint32_t type, const char* name, VxMapID* map) {
  if (!name || !map) return VXR_BADARG;
  const std::size_t m = mesh_->findMap(type, name);
  if (m == kNoMap) return VXR_NOTFOUND;
  *map = VxMapID(m + 1);
  return VXR_OK;
}

unsigned SdkMesh::MapDimension(VxMapID map) {
  const std::size_t m = mapIndex(map);
  return m == kNoMap ? 0u : mesh_->map(m).dimension();
}

unsigned SdkMesh::MapValueCount(VxMapID map) {
  const std::size_t m = mapIndex(map);
  if (m == kNoMap) return 0u;
  return unsigned(mesh_->map(m).pointValueCount() + mesh_->map(m).cornerValueCount());
}

VxResult SdkMesh::MapPointValue(VxMapID map, unsigned point, float* values) {
  const std::size_t m = mapIndex(map);
  if (m == kNoMap || !values) return VXR_BADARG;
  if (point >= mesh_->pointCount()) return VXR_OUTOFBOUNDS;
  const VertexMap& vmap = mesh_->map(m);
  const float* v = vmap.pointValue(point);
  if (!v) return VXR_NOTFOUND;
  std::copy_n(v, vmap.dimension(), values);
  return VXR_OK;
}

VxResult SdkMesh::MapEnumeratePoints(VxMapID map, IVxMapPointVisitor* visitor) {
  const std::size_t m = mapIndex(map);
  if (m == kNoMap || !visitor) return VXR_BADARG;
  const VertexMap& vmap = mesh_->map(m);
  const std::size_t points = mesh_->pointCount();
  for (std::size_t point = 0; point < points; ++point) {
    const float* v = vmap.pointValue(static_cast<std::uint32_t>(point));
    if (v && VxFailed(visitor->Point(static_cast<unsigned>(point), v))) return VXR_FAILED;
  }
  return VXR_OK;
}

VxResult SdkMesh::MapArrays(VxMapID map, VxMapArrays* arrays) {
  const std::size_t m = mapIndex(map);
  if (m == kNoMap || !arrays) return VXR_BADARG;
  const VertexMap& vmap = mesh_->map(m);
  const std::vector<std::uint32_t>& ids = vmap.cornerIds();  // sorts first: values follow
  arrays->dimension = vmap.dimension();
  arrays->pointCount = unsigned(std::min(vmap.pointCapacity(), mesh_->pointCount()));
  arrays->pointValues = vmap.pointValueData();
  arrays->pointHas = vmap.pointHasBits();
  arrays->cornerCount = ids.size();
  arrays->cornerIds = ids.data();
  arrays->cornerValues = vmap.cornerValueAt(0);
  return VXR_OK;
}

VxResult SdkMesh::VisitPolygons(IVxPolygonVisitor* visitor) {
  if (!visitor) return VXR_BADARG;
  WalkPolygon polygon(*mesh_);
  const auto count = std::uint32_t(mesh_->polygonCount());
  for (std::uint32_t p = 0; p < count; ++p) {
    polygon.moveTo(p);
    const VxResult r = visitor->Polygon(polygon);
    if (VxFailed(r)) return r;
  }
  return VXR_OK;
}

}  // namespace vexo
