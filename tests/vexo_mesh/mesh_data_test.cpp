#include "mesh/mesh_data.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace vexo
