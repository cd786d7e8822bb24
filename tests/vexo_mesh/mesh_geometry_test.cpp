#include "mesh/mesh_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "mesh/mesh_data.h"
#include "mesh_shapes.h"

namespace vexo {
namespace {

#define EXPECT_VEC(actual, ...)                 \
  do {                                          \
    const Vec3 a_ = (actual), e_ = __VA_ARGS__; \
    EXPECT_NEAR(a_.x, e_.x, 1e-12);             \
    EXPECT_NEAR(a_.y, e_.y, 1e-12);             \
    EXPECT_NEAR(a_.z, e_.z, 1e-12);             \
  } while (0)

Vec3 unit(const Vec3& v) { return v * (1.0 / length(v)); }

TEST(MeshGeometry, CubeIsSharpAtFortyDegreesAndRoundFromNinety) {
  MeshData mesh;
  test::addCube(mesh);
  const Vec3 faces[6] = {{0, 0, -1}, {0, 0, 1}, {-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}};
  for (double angle : {40.0, 100.0, 180.0}) {
    mesh.setSmoothingAngle(angle);
    const MeshGeometry& g = mesh.geometry();
    for (std::uint32_t c = 0; c < 24; ++c) {
      const std::uint32_t p = c / 4, point = mesh.polygonPoints(p)[c % 4];
      EXPECT_VEC(g.polygonNormals[p], faces[p]);
      EXPECT_DOUBLE_EQ(g.polygonAreas[p], 1.0);
      EXPECT_VEC(g.cornerNormal(c), angle < 90 ? faces[p] : unit(mesh.point(point)));
    }
    EXPECT_EQ(g.normals.size(), angle < 90 ? 24u : 8u) << "equal normals at a point are stored once";
  }
}

TEST(MeshGeometry, CylinderSidesAreSmoothAndItsCapsSharp) {
  MeshData mesh;
  test::addCylinder(mesh, 64);
  const MeshGeometry& g = mesh.geometry();
  for (std::uint32_t p = 0; p < mesh.polygonCount(); ++p) {
    for (unsigned k = 0; k < mesh.polygonSize(p); ++k) {
      const Vec3 at = mesh.point(mesh.polygonPoints(p)[k]);
      const Vec3 want = p < 64 ? unit({at.x, 0, at.z}) : Vec3{0, p == 64 ? 1.0 : -1.0, 0};
      EXPECT_VEC(g.cornerNormal(mesh.firstCorner(p) + k), want);
    }
  }
}

TEST(MeshGeometry, NormalsWeighByAreaWithinTheAngle) {
  // A wide (area 4) and a narrow (area 1) strip hinged along Z, 30 degrees apart.
  MeshData mesh;
  const double c = std::cos(0.5235987755982988), s = std::sin(0.5235987755982988);
  const double xyz[] = {0, 0, 0, 0, 0, 1, -4, 0, 1, -4, 0, 0, c, s, 1, c, s, 0};
  mesh.appendPoints(xyz, 6);
  mesh.addPolygon({0, 3, 2, 1});
  mesh.addPolygon({0, 1, 4, 5});
  const Vec3 wide{0, 1, 0}, narrow{-s, c, 0};
  EXPECT_VEC(mesh.geometry().polygonNormals[1], narrow);
  EXPECT_VEC(mesh.geometry().cornerNormal(mesh.corner(0, 0)), unit(wide * 4.0 + narrow));
  EXPECT_VEC(mesh.geometry().cornerNormal(mesh.corner(1, 1)), unit(wide * 4.0 + narrow));
  EXPECT_VEC(mesh.geometry().cornerNormal(mesh.corner(0, 3)), wide);
  mesh.setSmoothingAngle(29.9);
  EXPECT_VEC(mesh.geometry().cornerNormal(mesh.corner(0, 0)), wide);
  EXPECT_VEC(mesh.geometry().cornerNormal(mesh.corner(1, 0)), narrow);
}

TEST(MeshGeometry, PolygonWithoutAreaBorrowsItsNeighbours) {
  MeshData mesh;
  const double xyz[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 2, 2, 0};
  mesh.appendPoints(xyz, 5);
  mesh.addPolygon({0, 1, 2, 3});  // facing +Z
  mesh.addPolygon({0, 2, 4});     // all on one line
  const MeshGeometry& g = mesh.geometry();
  EXPECT_VEC(g.polygonNormals[1], kNoAreaNormal);
  EXPECT_VEC(g.cornerNormal(mesh.corner(1, 2)), {0, 0, 1});
  EXPECT_VEC(g.cornerNormal(mesh.corner(1, 4)), kNoAreaNormal);
  for (std::uint32_t c = 0; c < 4; ++c) EXPECT_VEC(g.cornerNormal(c), {0, 0, 1});
  // Its one triangle follows the quad's two.
  EXPECT_EQ(mesh.firstTriangle(1), 2u);
  EXPECT_EQ(std::vector<std::uint32_t>(g.triangles.begin() + 6, g.triangles.end()),
            (std::vector<std::uint32_t>{0, 2, 4}));
}

// Every double's bits, so that -0.0 and 0.0 (and NaNs) tell apart.
template <class T>
bool sameBytes(const std::vector<T>& a, const std::vector<T>& b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

void expectSameGeometry(const MeshData& mesh) {
  const MeshGeometry quick = buildMeshGeometry(mesh), any = buildMeshGeometryAnyPolygons(mesh);
  EXPECT_EQ(quick.triangles, any.triangles);
  EXPECT_TRUE(sameBytes(quick.polygonNormals, any.polygonNormals));
  EXPECT_TRUE(sameBytes(quick.polygonAreas, any.polygonAreas));
  EXPECT_EQ(quick.cornerNormalIndex, any.cornerNormalIndex);
  EXPECT_TRUE(sameBytes(quick.normals, any.normals));
}

// Triangles and quads take a quicker path: the same results to the bit,
// on bumpy, flat, folded, degenerate and far-away polygons.
TEST(MeshGeometry, TrianglesAndQuadsComeOutAsFromAnyPolygons) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> bump(-0.3, 0.3);
  for (const double offset : {0.0, 1e7}) {
    for (const double angle : {0.0, 40.0, 180.0}) {
      SCOPED_TRACE(::testing::Message() << "offset " << offset << ", angle " << angle);
      MeshData mesh;
      const unsigned side = 12;
      for (unsigned y = 0; y <= side; ++y)
        for (unsigned x = 0; x <= side; ++x) mesh.addPoint({offset + x + bump(random), bump(random), y + bump(random)});
      for (unsigned y = 0; y < side; ++y) {
        for (unsigned x = 0; x < side; ++x) {
          const std::uint32_t a = y * (side + 1) + x, b = a + 1, c = b + side + 1, d = a + side + 1;
          switch ((x + 3 * y) % 5) {
            case 0: mesh.addPolygon({a, b, c}); mesh.addPolygon({a, c, d}); break;
            case 1: mesh.addPolygon({a, b, b, c}); break;  // a point twice
            case 2: mesh.addPolygon({a, c, b, d}); break;  // folded over itself
            default: mesh.addPolygon({a, b, c, d}); break;
          }
        }
      }
      const std::uint32_t e = mesh.addPoint({offset, 0, 0});
      mesh.addPolygon({0, e, 0});  // no area
      mesh.addPolygon({1, 2, 3, 2});  // on one line
      mesh.setSmoothingAngle(angle);
      expectSameGeometry(mesh);
    }
  }
  MeshData cube;
  test::addCube(cube);
  expectSameGeometry(cube);
}

}  // namespace
}  // namespace vexo
