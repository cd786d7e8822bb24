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

TEST(MeshData, BadInputIsRefusedWithAReason) {
  MeshData mesh;
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
  mesh.appendPoints(xyz, 4);
  EXPECT_EQ(errorOf([&] { mesh.addPolygon({0, 1}); }), "a polygon needs at least 3 points, this one has 2");
  const std::uint32_t quads[] = {0, 1, 2, 3, 0, 1, 2, 9};
  EXPECT_EQ(errorOf([&] { mesh.appendPolygons(4, quads, 2); }), "point 9 does not exist: the mesh has 4 points");
  EXPECT_EQ(mesh.polygonCount(), 0u) << "a refused polygon leaves nothing behind";
  EXPECT_EQ(errorOf([&] { mesh.setPolygonTag(0, VX_PTAG_MATERIAL, "m"); }),
            "polygon 0 does not exist: the mesh has 0 polygons");
  EXPECT_EQ(errorOf([&] { mesh.setSmoothingAngle(-1); }),
            "the smoothing angle must be between 0 and 180 degrees, not -1.000000");
  mesh.addPolygon({0, 1, 2, 3});
  const std::size_t uv = mesh.addMap(VX_VMAP_TEXTUREUV, "uv");
  EXPECT_EQ(errorOf([&] { mesh.addMap(VX_VMAP_TEXTUREUV, "uv"); }), "the mesh already has a \"TXUV\" map named \"uv\"");
  EXPECT_EQ(errorOf([&] { mesh.addMap(VX_MAKE_ID('S', 'P', 'O', 'T'), "s"); }),
            "the vertex map \"s\" of type \"SPOT\" needs a dimension (values per element)");
  EXPECT_EQ(mesh.map(mesh.addMap(VX_MAKE_ID('S', 'P', 'O', 'T'), "s", 5)).dimension(), 5u);
  const float value[2] = {0, 0};
  EXPECT_EQ(errorOf([&] { mesh.setPointValue(uv, 4, value); }),
            "vertex map \"uv\": point 4 does not exist: the mesh has 4 points");
  EXPECT_EQ(errorOf([&] { mesh.setCornerValue(uv, 0, 7, value); }),
            "vertex map \"uv\": point 7 is not a corner of polygon 0");
  EXPECT_EQ(errorOf([&] { mesh.setCornerValues(uv, 2, 3, value); }),
            "vertex map \"uv\": corners 2 to 5 are beyond the mesh's 4 corners");
}

}  // namespace
}  // namespace vexo
