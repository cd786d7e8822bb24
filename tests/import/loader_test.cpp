#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>

#include "engine/evaluation.h"
#include "engine/matrix.h"
#include "import/gltf_loader.h"
#include "import/gltf_transform.h"
#include "mesh/mesh_data.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

// The rotation matrix of a unit quaternion for row vectors (the transpose of glTF's).
Matrix quaternionMatrix(const Quaternion& q) {
  const double x = q[0], y = q[1], z = q[2], w = q[3];
  return {1 - 2 * (y * y + z * z), 2 * (x * y + z * w),     2 * (x * z - y * w),     0,
          2 * (x * y - z * w),     1 - 2 * (x * x + z * z), 2 * (y * z + x * w),     0,
          2 * (x * z + y * w),     2 * (y * z - x * w),     1 - 2 * (x * x + y * y), 0,
          0,                       0,                       0,                       1};
}

void expectMatrixNear(const Matrix& a, const Matrix& b, double tolerance) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(a[static_cast<std::size_t>(i)], b[static_cast<std::size_t>(i)], tolerance) << "element " << i;
}

TEST(GltfTransform, EulerAnglesGiveTheQuaternionsRotationGimbalCasesIncluded) {
  std::mt19937 random(7);
  std::normal_distribution<double> normal;
  std::vector<Quaternion> cases = {{0, 0, 0, 1}, {0, std::sqrt(0.5), 0, std::sqrt(0.5)}, {0, -std::sqrt(0.5), 0, std::sqrt(0.5)},
                                   {1, 0, 0, 0}, {0.5, 0.5, 0.5, 0.5}};
  for (int i = 0; i < 200; ++i) {
    Quaternion q{normal(random), normal(random), normal(random), normal(random)};
    const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    for (double& v : q) v /= n;
    cases.push_back(q);
  }
  for (const Quaternion& q : cases)
    expectMatrixNear(rotationMatrix(eulerFromQuaternion(q), RotationOrder::XYZ), quaternionMatrix(q), 1e-9);
}

TEST(GltfTransform, ShearedMirroredMatrixIsRebuiltByTheHostsStack) {
  // Columns of a glTF matrix: x axis, y axis leaning on x, a mirrored z axis, a translation.
  const Matrix m = {0.8, 0.6, 0, 0, -0.9, 1.2, 0.3, 0, 0.1, 0.2, -2, 0, 4, 5, 6, 1};
  StackParts parts;
  ASSERT_TRUE(decomposeMatrix(m, parts));
  EXPECT_TRUE(parts.sheared);
  Matrix rebuilt = shearMatrix(parts.shearXY, parts.shearXZ, parts.shearYZ);
  rebuilt = multiply(rebuilt, scaleMatrix(parts.scale));
  rebuilt = multiply(rebuilt, rotationMatrix(parts.rotation, RotationOrder::XYZ));
  rebuilt = multiply(rebuilt, translationMatrix(parts.translation));
  expectMatrixNear(rebuilt, m, 1e-9);
}

TEST(GltfTransform, NearestEulerTurnsTheShortWay) {
  const double pi = std::acos(-1.0);
  const Vector3 previous = {0, 0, 3.1};
  const Vector3 next = nearestEuler({0, 0, -3.1}, previous);
  EXPECT_NEAR(next[2], 2 * pi - 3.1, 1e-12);
  expectMatrixNear(rotationMatrix(nearestEuler({0.3, 1.2, -2.0}, {3, 2, 1}), RotationOrder::XYZ),
                   rotationMatrix({0.3, 1.2, -2.0}, RotationOrder::XYZ), 1e-12);
}

// A strip of two triangles under a node at (1, 2, 3) with a sheared child, and a camera.
const char* const kSmallFile = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 1]}],
 "nodes": [{"name": "Strip", "mesh": 0, "translation": [1, 2, 3], "children": [2]}, {"name": "Eye", "camera": 0},
           {"name": "Sheared", "matrix": [1, 0, 0, 0, 0.5, 2, 0, 0, 0, 0, -1, 0, 4, 5, 6, 1]}],
 "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "mode": 5, "material": 0}]}],
 "materials": [{"name": "Red", "pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1]}}],
 "cameras": [{"type": "perspective", "perspective": {"yfov": 0.8, "znear": 0.1}}],
 "buffers": [{"byteLength": 48, "uri": "data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAACAPwAAgD8AAAAA"}],
 "bufferViews": [{"buffer": 0, "byteLength": 48}],
 "accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]}]})";

class SmallFile : public ::testing::Test {
 protected:
  void SetUp() override {
    char folder[] = "/tmp/import-test-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    folder_ = folder;
    path_ = folder_ + "/small.gltf";
    std::ofstream(path_) << kSmallFile;
  }
  void TearDown() override { std::system(("rm -rf '" + folder_ + "'").c_str()); }

  bool load(const GltfLoadOptions& options) { return loadGltf(path_, options, folder_, scene_, result_); }
  std::size_t count(const char* type) { return scene_.itemsOfType(scene_.types().find(type)).size(); }
  Matrix world(const char* name) {
    Matrix m{};
    Evaluation evaluation(scene_, kEditAction, 0.0);
    EXPECT_TRUE(evaluation.matrix(*scene_.findName(name), MatrixChannel::World, m));
    return m;
  }

  std::string folder_, path_;
  Scene scene_;
  GltfLoadResult result_;
};

TEST_F(SmallFile, LoadsStripsAsTrianglesMatricesWithShearMaterialsAndCameras) {
  ASSERT_TRUE(load(GltfLoadOptions{})) << result_.error;
  EXPECT_TRUE(result_.warnings.empty());
  const MeshData* mesh = scene_.meshes().meshOf(*scene_.findName("Strip"));
  ASSERT_NE(mesh, nullptr);
  ASSERT_EQ(mesh->polygonCount(), 2u);
  // glTF's strip winding: (0, 1, 2), then (1, 3, 2).
  EXPECT_EQ(std::vector<std::uint32_t>(mesh->polygonPoints(0), mesh->polygonPoints(0) + 3), (std::vector<std::uint32_t>{0, 1, 2}));
  EXPECT_EQ(std::vector<std::uint32_t>(mesh->polygonPoints(1), mesh->polygonPoints(1) + 3), (std::vector<std::uint32_t>{1, 3, 2}));
  EXPECT_EQ(mesh->polygonTag(1, VX_PTAG_MATERIAL), "Red");
  EXPECT_EQ(count("mask"), 1u);
  expectMatrixNear(world("Sheared"), {1, 0, 0, 0, 0.5, 2, 0, 0, 0, 0, -1, 0, 5, 7, 9, 1}, 1e-9);
  EXPECT_EQ(count("camera"), 1u);
}

TEST_F(SmallFile, OptionsLeaveOutGeometryMaterialsAndCamerasAndScaleTheScene) {
  GltfLoadOptions options;
  options.loadGeometry = false;
  options.loadCameras = false;
  ASSERT_TRUE(load(options)) << result_.error;
  EXPECT_EQ(count("mesh"), 0u);
  EXPECT_EQ(count("camera"), 0u);
  EXPECT_EQ(count("mask"), 0u);
  EXPECT_NE(scene_.findName("Strip"), nullptr);

  Scene scaled;
  GltfLoadOptions units;
  units.loadMaterials = false;
  units.importUnits = 3;  // centimetres
  units.globalScalingFactor = 2;
  ASSERT_TRUE(loadGltf(path_, units, folder_, scaled, result_)) << result_.error;
  EXPECT_EQ(scaled.itemsOfType(scaled.types().find("mask")).size(), 0u);
  const MeshData* mesh = scaled.meshes().meshOf(*scaled.findName("Strip"));
  ASSERT_NE(mesh, nullptr);
  EXPECT_NEAR(mesh->point(3).x, 0.02, 1e-12);
  EXPECT_EQ(mesh->polygonTag(0, VX_PTAG_MATERIAL), "Default");
  Matrix m{};
  Evaluation evaluation(scaled, kEditAction, 0.0);
  ASSERT_TRUE(evaluation.matrix(*scaled.findName("Sheared"), MatrixChannel::World, m));
  EXPECT_NEAR(m[12], 0.02 * 5, 1e-12);
  EXPECT_NEAR(m[14], 0.02 * 9, 1e-12);
}

TEST_F(SmallFile, ANodeWithTwoParentsIsAnErrorNamingTheFile) {
  std::string text = kSmallFile;
  text.replace(text.find("\"children\": [2]"), 15, "\"children\": [2, 1]");
  std::ofstream(path_) << text;
  EXPECT_FALSE(load(GltfLoadOptions{}));
  EXPECT_EQ(result_.error, path_ + ": scene 0 names node 1 as a root, but it is a child of node 0");
}

}  // namespace
}  // namespace vexo
