// The polygon walk reads the maps as arrays when the host hands them out,
// else a polygon's corners per map in one host call, else one corner at a
// time: all must give the builder the same corner values.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "export/geometry/mesh_walk.h"
#include "vexo/vx_mesh.h"

namespace {

constexpr VxMapID kNormal = 1, kRgb = 2, kRgba = 3, kUv = 4, kBasis = 5;

// One quad 0 1 2 3 (triangles 0 1 2 and 0 2 3) and a second one 1 4 5 2
// sharing an edge. Each map has values at some corners only.
class PatchyMesh : public IVxMesh, public IVxPolygon, public IVxScene, public IVxItem, public IVxMeshService {
 public:
  bool bulk = true;
  bool arrays = false;
  mutable unsigned singleReads = 0, bulkReads = 0;

  // IVxMesh
  const char* Ident() const override { return "patchy"; }
  unsigned PointCount() override { return 6; }
  unsigned PolygonCount() override { return 2; }
  VxResult PointPosition(unsigned, double position[3]) override {
    std::fill(position, position + 3, 0.0);
    return VXR_OK;
  }
  VxResult PolygonTriangleCount(unsigned, unsigned* count) override {
    *count = 2;
    return VXR_OK;
  }
  unsigned MapCount(std::uint32_t) override { return 0; }
  VxResult MapByIndex(std::uint32_t, unsigned, const char**, VxMapID*) override { return VXR_NOTFOUND; }
  VxResult MapLookup(std::uint32_t, const char*, VxMapID*) override { return VXR_NOTFOUND; }
  unsigned MapDimension(VxMapID map) override { return dimension(map); }
  unsigned MapValueCount(VxMapID) override { return 0; }
  VxResult MapPointValue(VxMapID, unsigned, float*) override { return VXR_NOTFOUND; }
  VxResult MapArrays(VxMapID map, VxMapArrays* out) override {
    if (!arrays) return VXR_NOTIMPL;
    MapStore& store = stores_[map];
    store = MapStore();
    const unsigned d = dimension(map);
    store.pointValues.assign(6 * d, 0.0f);
    for (unsigned point = 0; point < 6; ++point) {
      if (!hasPoint(map, point)) continue;
      store.has |= 1u << point;
      fillPoint(map, point, &store.pointValues[d * point]);
    }
    for (unsigned polygon = 0; polygon < 2; ++polygon) {
      for (unsigned slot = 0; slot < 4; ++slot) {
        if (!hasCorner(map, polygon, slot)) continue;
        store.cornerIds.push_back(4 * polygon + slot);
        store.cornerValues.resize(store.cornerValues.size() + d);
        fillCorner(map, polygon, slot, &store.cornerValues[store.cornerValues.size() - d]);
      }
    }
    out->dimension = d;
    out->pointCount = 5;  // point 5 lies past the map's points
    out->pointValues = store.pointValues.data();
    out->pointHas = &store.has;
    out->cornerCount = store.cornerIds.size();
    out->cornerIds = store.cornerIds.data();
    out->cornerValues = store.cornerValues.data();
    return VXR_OK;
  }
  VxResult VisitPolygons(IVxPolygonVisitor* visitor) override {
    for (polygon_ = 0; polygon_ < 2; ++polygon_)
      if (VxFailed(visitor->Polygon(*this))) return VXR_FAILED;
    return VXR_OK;
  }

  // IVxPolygon
  unsigned Index() const override { return polygon_; }
  unsigned VertexCount() const override { return 4; }
  unsigned PointByIndex(unsigned vertex) const override { return kPoints[polygon_][vertex]; }
  const char* Tag(std::uint32_t) const override { return "Default"; }
  unsigned TriangleCount() const override { return 2; }
  VxResult Triangle(unsigned index, unsigned points[3]) const override {
    const unsigned* p = kPoints[polygon_];
    const unsigned corners[2][3] = {{0, 1, 2}, {0, 2, 3}};
    for (int k = 0; k < 3; ++k) points[k] = p[corners[index][k]];
    return VXR_OK;
  }
  VxResult Normal(double normal[3]) const override { return CornerNormal(0, normal); }
  VxResult CornerNormal(unsigned point, double normal[3]) const override {
    normal[0] = 0.25 * point, normal[1] = 1.0 / 3.0, normal[2] = 0.5;
    return VXR_OK;
  }
  VxResult MapEvaluate(VxMapID map, unsigned point, float* values) const override {
    ++singleReads;
    const unsigned* p = kPoints[polygon_];
    const unsigned slot = unsigned(std::find(p, p + 4, point) - p);
    if (slot == 4) return VXR_NOTFOUND;
    return evaluate(map, slot, values) ? VXR_OK : VXR_NOTFOUND;
  }
  VxResult MapEvaluateCorners(VxMapID map, float* values, unsigned char* found) const override {
    if (!bulk) return VXR_NOTIMPL;
    ++bulkReads;
    for (unsigned slot = 0; slot < 4; ++slot, values += dimension(map)) found[slot] = evaluate(map, slot, values);
    return VXR_OK;
  }

  // IVxScene, IVxItem, IVxMeshService: one item showing this mesh.
  unsigned ItemCount(VxTypeCode) override { return 1; }
  IVxItem* ItemByIndex(VxTypeCode, unsigned) override { return this; }
  IVxItem* ItemByIdent(const char*) override { return this; }
  IVxItem* SceneItem() override { return nullptr; }
  unsigned SelectionCount(const char*) override { return 0; }
  IVxItem* SelectionByIndex(const char*, unsigned) override { return nullptr; }
  VxResult ChannelRead(const char*, double, IVxChannelRead**) override { return VXR_NOTFOUND; }
  double Time() const override { return 0.0; }
  VxResult SetTime(double) override { return VXR_OK; }
  IVxMeshService* MeshService() override { return this; }
  VxTypeCode Type() const override { return 1; }
  const char* Name() const override { return "Patch"; }
  IVxScene* Scene() override { return this; }
  IVxItem* Parent() override { return nullptr; }
  unsigned ChildCount() override { return 0; }
  IVxItem* ChildByIndex(unsigned) override { return nullptr; }
  unsigned ChannelCount() override { return 0; }
  VxResult ChannelLookup(const char*, unsigned*) override { return VXR_NOTFOUND; }
  VxResult ChannelName(unsigned, const char**) override { return VXR_NOTFOUND; }
  VxResult ChannelType(unsigned, VxChannelType*) override { return VXR_NOTFOUND; }
  VxResult MeshLookup(IVxItem*, IVxMesh** mesh) override {
    *mesh = this;
    return VXR_OK;
  }

 private:
  static unsigned dimension(VxMapID map) {
    const unsigned dimensions[] = {0, 3, 3, 4, 2, 6};
    return dimensions[map];
  }
  // Which corners of which polygon have a value, one bit per slot.
  static bool hasCorner(VxMapID map, unsigned polygon, unsigned slot) {
    const unsigned masks[2][6] = {{0, 0b0101, 0b1010, 0b1111, 0b0111, 0b1000},
                                  {0, 0b1001, 0b0000, 0b0110, 0b1000, 0b1111}};
    return (masks[polygon][map] >> slot) & 1u;
  }
  static void fillCorner(VxMapID map, unsigned polygon, unsigned slot, float* values) {
    for (unsigned d = 0; d < dimension(map); ++d) values[d] = float(map) + 0.1f * float(slot) + 0.01f * float(d + polygon);
  }
  // Points 2 and 4 of the colour and texture-coordinate maps have values of their own.
  static bool hasPoint(VxMapID map, unsigned point) { return map != kNormal && map != kBasis && (point == 2 || point == 4); }
  static void fillPoint(VxMapID map, unsigned point, float* values) {
    for (unsigned d = 0; d < dimension(map); ++d) values[d] = 10.0f * float(map) + float(point) + 0.5f * float(d);
  }
  // The corner's own value, else its point's.
  bool evaluate(VxMapID map, unsigned slot, float* values) const {
    if (hasCorner(map, polygon_, slot)) {
      fillCorner(map, polygon_, slot, values);
      return true;
    }
    const unsigned point = kPoints[polygon_][slot];
    if (!hasPoint(map, point)) return false;
    fillPoint(map, point, values);
    return true;
  }

  struct MapStore {
    std::vector<float> pointValues, cornerValues;
    std::uint64_t has = 0;
    std::vector<std::uint32_t> cornerIds;
  };
  MapStore stores_[6];

  static constexpr unsigned kPoints[2][4] = {{0, 1, 2, 3}, {1, 4, 5, 2}};
  unsigned polygon_ = 0;
};

TEST(MeshWalk, MapArraysAndOneReadPerMapAndPolygonGiveWhatCornerByCornerReadsGive) {
  MeshMaps maps;
  maps.normal = kNormal;
  maps.colours = {kRgb, kRgba};
  maps.colourHasAlpha = {false, true};
  maps.uvs = {kUv};
  maps.tangentBases = {kBasis};

  // 0: from the arrays, 1: per polygon and map, 2: per corner.
  std::vector<PrimitiveBuild> builds;
  for (const int mode : {0, 1, 2}) {
    PatchyMesh host;
    host.arrays = mode == 0;
    host.bulk = mode != 2;
    const CVxMesh mesh{CVxUser_Scene(&host), CVxUser_Item(static_cast<IVxItem*>(&host))};
    MeshBuilder builder(maps.layout(), 6, 12, false);
    const MeshWalk walk = walkMesh(mesh, maps, builder);
    ASSERT_TRUE(walk.complete);
    EXPECT_EQ(host.singleReads, mode == 2 ? 40u : 0u) << "5 maps at 8 points";
    EXPECT_EQ(host.bulkReads, mode == 1 ? 10u : 0u) << "5 maps in 2 polygons";
    ASSERT_EQ(builder.primitives().size(), 1u);
    builds.push_back(builder.primitives()[0]);
  }
  const PrimitiveBuild& single = builds[2];
  for (int mode : {0, 1}) {
    const PrimitiveBuild& other = builds[std::size_t(mode)];
    EXPECT_EQ(other.vertexPoint, single.vertexPoint) << mode;
    EXPECT_EQ(other.indices, single.indices) << mode;
    EXPECT_EQ(other.normals, single.normals) << mode;
    EXPECT_EQ(other.values, single.values) << mode;
  }
  const PrimitiveBuild& bulk = builds[0];
  // Point 4's own texture coordinates fill its corner without one.
  EXPECT_NE(std::find(bulk.values.begin(), bulk.values.end(), 44.0f), bulk.values.end());
  // Points 1 and 2 differ between the two quads, so they split.
  EXPECT_EQ(bulk.vertexPoint.size(), 8u);
  // Point 1 in the first quad: no stored normal (the host's own), an RGB
  // colour with alpha 1, texture coordinates (flag 1), no tangent basis.
  const CornerLayout layout = maps.layout();
  const float* values = &bulk.values[layout.stride() * 1];
  EXPECT_EQ(bulk.normals[3], 0.25);
  EXPECT_EQ(values[layout.colourOffset(0) + 3], 1.0f);
  EXPECT_EQ(values[layout.uvOffset(0) + 2], 1.0f);
  EXPECT_EQ(values[layout.tangentOffset(0)], 0.0f);
  // Point 0 has no RGB colour (alpha stays 0), point 3 no texture coordinates (flag 0).
  EXPECT_EQ(bulk.values[layout.colourOffset(0) + 3], 0.0f);
  EXPECT_EQ(bulk.values[layout.stride() * 3 + layout.uvOffset(0) + 2], 0.0f);
}

}  // namespace
