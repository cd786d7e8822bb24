#include "mesh/sdk_mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "mesh_shapes.h"

namespace vexo {
namespace {

class Visitor final : public IVxPolygonVisitor {
 public:
  explicit Visitor(std::function<VxResult(const IVxPolygon&)> f) : f_(std::move(f)) {}
  VxResult Polygon(const IVxPolygon& polygon) override { return f_(polygon); }

 private:
  std::function<VxResult(const IVxPolygon&)> f_;
};

TEST(SdkMesh, MapsByTypeInCreationOrder) {
  MeshData data;
  test::addCube(data);
  data.addMap(VX_VMAP_TEXTUREUV, "b");
  const std::size_t rgb = data.addMap(VX_VMAP_RGB, "a");
  data.addMap(VX_VMAP_TEXTUREUV, "a");
  const float red[3] = {1, 0, 0}, green[3] = {0, 1, 0};
  data.setPointValue(rgb, 5, red);
  data.setCornerValue(rgb, 0, 0, green);
  data.setCornerValue(rgb, 0, 0, red);  // the same corner again: the later value counts
  SdkMesh mesh(data);
  ASSERT_EQ(mesh.MapCount(VX_VMAP_TEXTUREUV), 2u);
  const char* name = nullptr;
  VxMapID id = VX_MAP_NONE, found = VX_MAP_NONE;
  ASSERT_EQ(mesh.MapByIndex(VX_VMAP_TEXTUREUV, 1, &name, &id), VXR_OK);
  EXPECT_STREQ(name, "a");
  ASSERT_EQ(mesh.MapLookup(VX_VMAP_TEXTUREUV, "a", &found), VXR_OK);
  EXPECT_EQ(found, id);
  EXPECT_EQ(mesh.MapByIndex(VX_VMAP_TEXTUREUV, 2, &name, &id), VXR_OUTOFBOUNDS);
  EXPECT_EQ(mesh.MapLookup(VX_VMAP_TEXTUREUV, "c", &id), VXR_NOTFOUND);
  ASSERT_EQ(mesh.MapLookup(VX_VMAP_RGB, "a", &id), VXR_OK);
  EXPECT_NE(id, found);
  EXPECT_EQ(mesh.MapDimension(id), 3u);
  EXPECT_EQ(mesh.MapValueCount(id), 2u);
  EXPECT_EQ(data.map(rgb).cornerValue(0)[0], 1.0f);
  float out[3] = {};
  EXPECT_EQ(mesh.MapPointValue(id, 5, out), VXR_OK);
  EXPECT_EQ(out[0], 1.0f);
  EXPECT_EQ(mesh.MapPointValue(id, 0, out), VXR_NOTFOUND) << "a corner value is no point value";
  EXPECT_EQ(mesh.MapPointValue(id, 8, out), VXR_OUTOFBOUNDS);
}

// Corner values written in scrambled order, some twice, over a map with some
// point values: every corner answers its own value, else its point's, else
// VXR_NOTFOUND.
TEST(SdkMesh, MapEvaluatePrefersTheCornerThenThePointOneCornerAllAtOnceOrFromTheArrays) {
  MeshData data;
  test::addCylinder(data, 16);
  const std::size_t uv = data.addMap(VX_VMAP_TEXTUREUV, "uv"), rgb = data.addMap(VX_VMAP_RGB, "rgb");
  const float side[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  data.setCornerValues(uv, data.firstCorner(5), 4, side);  // every corner of one polygon
  std::mt19937 rng(3);
  for (int i = 0; i < 200; ++i) {
    const std::uint32_t p = std::uint32_t(rng() % data.polygonCount());
    const std::uint32_t point = data.polygonPoints(p)[rng() % data.polygonSize(p)];
    const float v[3] = {float(i), float(p), float(point)};
    data.setCornerValue(i % 3 ? uv : rgb, p, point, v);
    if (i % 4 == 0) data.setPointValue(uv, std::uint32_t(rng() % data.pointCount()), v);
  }
  SdkMesh mesh(data);
  VxMapArrays arrays[2];
  ASSERT_EQ(mesh.MapArrays(VxMapID(uv + 1), &arrays[0]), VXR_OK);
  ASSERT_EQ(mesh.MapArrays(VxMapID(rgb + 1), &arrays[1]), VXR_OK);
  EXPECT_EQ(mesh.MapArrays(VX_MAP_NONE, &arrays[0]), VXR_BADARG);
  // What a reader of the arrays finds at a corner: its own value, else its point's.
  auto fromArrays = [](const VxMapArrays& a, std::uint32_t corner, unsigned point) -> const float* {
    const std::uint32_t* end = a.cornerIds + a.cornerCount;
    const std::uint32_t* at = std::lower_bound(a.cornerIds, end, corner);
    if (at != end && *at == corner) return a.cornerValues + std::size_t(at - a.cornerIds) * a.dimension;
    if (point < a.pointCount && (a.pointHas[point / 64] >> (point % 64) & 1u)) return a.pointValues + point * a.dimension;
    return nullptr;
  };
  for (const VxMapArrays& a : arrays) EXPECT_TRUE(std::is_sorted(a.cornerIds, a.cornerIds + a.cornerCount));
  std::size_t corners = 0, fromCorner = 0, fromPoint = 0, missing = 0;
  Visitor visit([&](const IVxPolygon& poly) {
    for (unsigned k = 0; k < poly.VertexCount(); ++k, ++corners) {
      const unsigned point = poly.PointByIndex(k);
      for (std::size_t m : {uv, rgb}) {
        const float* own = data.map(m).cornerValue(data.corner(poly.Index(), point));
        const float* want = own ? own : data.map(m).pointValue(point);
        float got[3] = {-1, -1, -1};
        const VxResult r = poly.MapEvaluate(VxMapID(m + 1), point, got);
        EXPECT_EQ(r, want ? VXR_OK : VXR_NOTFOUND);
        for (unsigned d = 0; want && d < data.map(m).dimension(); ++d) EXPECT_EQ(got[d], want[d]);
        const float* inArrays = fromArrays(arrays[m == uv ? 0 : 1], data.firstCorner(poly.Index()) + k, point);
        EXPECT_EQ(inArrays != nullptr, want != nullptr);
        for (unsigned d = 0; want && inArrays && d < data.map(m).dimension(); ++d) EXPECT_EQ(inArrays[d], want[d]);
        (own ? fromCorner : want ? fromPoint : missing)++;
      }
    }
    // The whole polygon at once answers what each corner answers alone.
    for (std::size_t m : {uv, rgb}) {
      const unsigned dimension = data.map(m).dimension();
      std::vector<float> all(dimension * poly.VertexCount(), -1.0f);
      std::vector<unsigned char> has(poly.VertexCount(), 7);
      EXPECT_EQ(poly.MapEvaluateCorners(VxMapID(m + 1), all.data(), has.data()), VXR_OK);
      for (unsigned k = 0; k < poly.VertexCount(); ++k) {
        float one[3] = {-1, -1, -1};
        const bool found = poly.MapEvaluate(VxMapID(m + 1), poly.PointByIndex(k), one) == VXR_OK;
        EXPECT_EQ(has[k], found ? 1 : 0) << "polygon " << poly.Index() << " corner " << k;
        for (unsigned d = 0; found && d < dimension; ++d) EXPECT_EQ(all[dimension * k + d], one[d]);
      }
    }
    float got[3];
    unsigned char has[64];
    EXPECT_EQ(poly.MapEvaluateCorners(VX_MAP_NONE, got, has), VXR_BADARG);
    EXPECT_EQ(poly.MapEvaluate(VxMapID(uv + 1), 999, got), VXR_NOTFOUND) << "not a point of the polygon";
    EXPECT_EQ(poly.MapEvaluate(VX_MAP_NONE, poly.PointByIndex(0), got), VXR_BADARG);
    return VXR_OK;
  });
  ASSERT_EQ(mesh.VisitPolygons(&visit), VXR_OK);
  EXPECT_EQ(corners, data.cornerCount());
  EXPECT_GT(fromCorner, 100u);
  EXPECT_GT(fromPoint, 10u);
  EXPECT_GT(missing, 10u);
}

TEST(SdkMesh, VisitWalksInOrderFromTheCachesAndStopsOnFailure) {
  MeshData data;
  test::addCube(data);
  data.setPolygonTag(3, VX_PTAG_MATERIAL, "Steel");
  SdkMesh mesh(data);
  const MeshGeometry& g = data.geometry();
  std::vector<unsigned> order;
  Visitor visit([&](const IVxPolygon& poly) {
    const unsigned p = poly.Index();
    order.push_back(p);
    EXPECT_STREQ(poly.Tag(VX_PTAG_MATERIAL), p == 3 ? "Steel" : "Default");
    unsigned count = 0, pts[3];
    EXPECT_EQ(mesh.PolygonTriangleCount(p, &count), VXR_OK);
    EXPECT_EQ(poly.TriangleCount(), count);
    for (unsigned t = 0; t < 2; ++t) {
      EXPECT_EQ(poly.Triangle(t, pts), VXR_OK);
      EXPECT_EQ(std::vector<unsigned>(pts, pts + 3),
                std::vector<unsigned>(&g.triangles[6 * p + 3 * t], &g.triangles[6 * p + 3 * t + 3]));
    }
    EXPECT_EQ(poly.Triangle(2, pts), VXR_OUTOFBOUNDS);
    double n[3], c[3];
    EXPECT_EQ(poly.Normal(n), VXR_OK);
    EXPECT_EQ(n[(p / 2 + 2) % 3], p % 2 ? 1.0 : -1.0);  // faces -Z, +Z, -X, +X, -Y, +Y
    EXPECT_EQ(poly.CornerNormal(poly.PointByIndex(3), c), VXR_OK);
    EXPECT_EQ(std::vector<double>(c, c + 3), std::vector<double>(n, n + 3));
    EXPECT_EQ(poly.CornerNormal(99, c), VXR_NOTFOUND);
    if (p == 1) return VXR_FALSE;  // a success that says no goes on
    return p == 4 ? VXR_NOTIMPL : VXR_OK;
  });
  EXPECT_EQ(mesh.VisitPolygons(&visit), VXR_NOTIMPL);
  EXPECT_EQ(order, (std::vector<unsigned>{0, 1, 2, 3, 4}));
  EXPECT_EQ(mesh.VisitPolygons(nullptr), VXR_BADARG);
}

}  // namespace
}  // namespace vexo
