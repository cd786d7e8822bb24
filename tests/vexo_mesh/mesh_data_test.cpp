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

}  // namespace
}  // namespace vexo
