// Times the host's side of a mesh export over a grid of a million triangles
// (VEXO_MESH_BENCH_TRIANGLES to change): building the caches, then a walk
// asking what the exporter asks at each corner. Prints the numbers.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "mesh/sdk_mesh.h"
#include "mesh_shapes.h"

namespace vexo {
namespace {

class CornerVisitor final : public IVxPolygonVisitor {
 public:
  VxResult Polygon(const IVxPolygon& poly) override {
    for (unsigned t = 0, pts[3]; t < poly.TriangleCount() && VxOk(poly.Triangle(t, pts)); ++t) {
      for (unsigned point : pts) {
        double normal[3];
        float values[4];
        up += VxOk(poly.CornerNormal(point, normal)) && normal[1] == 1.0;
        for (VxMapID map = 1; map <= 3; ++map) found += VxOk(poly.MapEvaluate(map, point, values));
      }
    }
    return VXR_OK;
  }
  std::size_t up = 0, found = 0;
};

TEST(MeshSpeed, MillionTriangleGrid) {
  const char* env = std::getenv("VEXO_MESH_BENCH_TRIANGLES");
  const unsigned rows = unsigned((env ? std::strtoull(env, nullptr, 10) : 1000000) / 2000);
  using Clock = std::chrono::steady_clock;
  auto ms = [](Clock::time_point from) {
    return std::chrono::duration<double, std::milli>(Clock::now() - from).count();
  };
  MeshData data;
  test::addGrid(data, 1000, rows);
  std::vector<float> values(data.cornerCount() * 4, 0.5f);
  data.setPointValues(data.addMap(VX_VMAP_TEXTUREUV, "uv"), values.data());
  // A seam at every corner.
  data.setCornerValues(data.addMap(VX_VMAP_TEXTUREUV, "uv2"), 0, data.cornerCount(), values.data());
  data.setPointValues(data.addMap(VX_VMAP_RGBA, "color"), values.data());

  auto start = Clock::now();
  data.geometry();
  const double cacheMs = ms(start);
  SdkMesh mesh(data);
  CornerVisitor visitor;
  start = Clock::now();
  ASSERT_EQ(mesh.VisitPolygons(&visitor), VXR_OK);
  std::printf("mesh speed: %zu triangles: triangulation and normals %.0f ms, walk %.0f ms\n", data.triangleCount(),
              cacheMs, ms(start));
  EXPECT_EQ(visitor.up, data.triangleCount() * 3);
  EXPECT_EQ(visitor.found, data.triangleCount() * 9);
}

}  // namespace
}  // namespace vexo
