#include "mesh/mesh_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

template <class F>
std::string errorOf(F f) {
  try {
    f();
  } catch (const MeshError& e) {
    return e.what();
  }
  return "(no error)";
}

// Bulk building, which the scene-file reader leaves to the mesh to check.
TEST(MeshData, BulkInputBeyondTheMeshIsRefusedWhole) {
  MeshData mesh;
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  mesh.appendPoints(xyz, 4);
  const std::uint32_t quads[] = {0, 1, 2, 3, 0, 1, 2, 9};
  EXPECT_EQ(errorOf([&] { mesh.appendPolygons(4, quads, 2); }), "point 9 does not exist: the mesh has 4 points");
  EXPECT_EQ(mesh.polygonCount(), 0u) << "a refused polygon leaves nothing behind";
  mesh.appendPolygons(4, quads, 1);
  const std::size_t uv = mesh.addMap(VX_VMAP_TEXTUREUV, "uv");
  const float values[6] = {};
  EXPECT_EQ(errorOf([&] { mesh.setCornerValues(uv, 2, 3, values); }),
            "vertex map \"uv\": corners 2 to 5 are beyond the mesh's 4 corners");
  EXPECT_EQ(mesh.map(uv).cornerValueCount(), 0u);
}

// Point values taken over whole: every point has its value, none beyond.
TEST(MeshData, PointValuesTakenOverWholeMarkEveryPoint) {
  MeshData mesh;
  std::vector<double> xyz(3 * 70, 0.0);
  mesh.appendPoints(xyz.data(), 70);
  std::vector<float> values(2 * 70);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = float(i);
  const std::size_t uv = mesh.addMap(VX_VMAP_TEXTUREUV, "uv");
  mesh.setPointValues(uv, std::vector<float>(values));
  const VertexMap& map = mesh.map(uv);
  EXPECT_EQ(map.pointValueCount(), 70u);
  ASSERT_NE(map.pointValue(69), nullptr);
  EXPECT_EQ(map.pointValue(69)[1], 139.0f);
  EXPECT_EQ(map.pointValue(70), nullptr);
  // A map that has point values already has the new ones copied over them.
  const std::size_t other = mesh.addMap(VX_VMAP_TEXTUREUV, "other");
  const float one[2] = {5, 6};
  mesh.setPointValue(other, 3, one);
  mesh.setPointValues(other, std::vector<float>(values));
  EXPECT_EQ(mesh.map(other).pointValue(3)[0], 6.0f);
  EXPECT_EQ(mesh.map(other).pointValueCount(), 70u);
  EXPECT_EQ(errorOf([&] { mesh.setPointValues(uv, std::vector<float>(3)); }),
            "vertex map \"uv\": 3 values for 70 points of 2 values each");
}

// Points and polygons handed over whole, as the scene-file reader does.
TEST(MeshData, PointsAndPolygonsHandedOverWhole) {
  MeshData mesh;
  std::vector<Vec3> points{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  const Vec3* taken = points.data();
  mesh.setPoints(std::move(points));
  EXPECT_EQ(mesh.points().data(), taken) << "an empty mesh takes the array over";
  mesh.setPolygons({0, 4, 7}, {0, 1, 2, 3, 0, 2, 3});
  EXPECT_EQ(mesh.polygonCount(), 2u);
  EXPECT_EQ(mesh.polygonSize(1), 3u);
  EXPECT_EQ(mesh.corner(1, 3), 6u);
  EXPECT_EQ(mesh.triangleCount(), 3u);
  // A mesh that has some already appends.
  mesh.setPoints({{2, 2, 2}});
  mesh.setPolygons({0, 3}, {4, 1, 2});
  EXPECT_EQ(mesh.pointCount(), 5u);
  EXPECT_EQ(mesh.point(4).z, 2.0);
  EXPECT_EQ(mesh.polygonCount(), 3u);
  EXPECT_EQ(mesh.polygonPoints(2)[0], 4u);
  EXPECT_EQ(mesh.firstCorner(2), 7u);
  EXPECT_EQ(mesh.geometry().triangles.size(), 12u);

  MeshData other;
  other.setPoints({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
  EXPECT_EQ(errorOf([&] { other.setPolygons({0, 3, 5}, {0, 1, 2, 0, 1}); }),
            "a polygon needs at least 3 points, this one has 2");
  EXPECT_EQ(errorOf([&] { other.setPolygons({0, 3}, {0, 1, 7}); }), "point 7 does not exist: the mesh has 3 points");
  EXPECT_EQ(errorOf([&] { other.setPolygons({0, 3}, {0, 1}); }),
            "the polygon offsets do not match the 2 polygon points");
  EXPECT_EQ(other.polygonCount(), 0u) << "a refused polygon leaves nothing behind";
}

// Point values for a run of points, as the glTF loader gives them per primitive.
TEST(MeshData, PointValuesForARunOfPoints) {
  MeshData mesh;
  std::vector<double> xyz(3 * 130, 0.0);
  mesh.appendPoints(xyz.data(), 130);
  const std::size_t uv = mesh.addMap(VX_VMAP_TEXTUREUV, "uv");
  std::vector<float> values(2 * 100);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = float(i);
  mesh.setPointValues(uv, 20, 100, values.data());
  mesh.setPointValues(uv, 110, 20, values.data());  // overlaps the first run
  const VertexMap& map = mesh.map(uv);
  EXPECT_EQ(map.pointValueCount(), 110u) << "a point set twice counts once";
  EXPECT_EQ(map.pointValue(19), nullptr);
  ASSERT_NE(map.pointValue(20), nullptr);
  EXPECT_EQ(map.pointValue(20)[1], 1.0f);
  EXPECT_EQ(map.pointValue(109)[0], 178.0f);
  EXPECT_EQ(map.pointValue(110)[0], 0.0f);
  EXPECT_EQ(map.pointValue(129)[1], 39.0f);
  EXPECT_EQ(errorOf([&] { mesh.setPointValues(uv, 120, 11, values.data()); }),
            "vertex map \"uv\": point 130 does not exist: the mesh has 130 points");
  EXPECT_EQ(map.pointValueCount(), 110u);
}

}  // namespace
}  // namespace vexo
