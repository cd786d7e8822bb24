// Animations and skins: curves and joints refer to node handles and become
// accessors, samplers, channels and skins numbered at write time.
#include <gtest/gtest.h>

#include "test_util.h"
#include "validator.h"

namespace {

TEST(GltfAnimation, CurvesBecomeLinearSamplersAimedAtNodeIndices) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t parent = doc.addNode(doc.root(), "parent");
  const std::uint32_t late = doc.addNode(doc.root(), "late");
  const std::uint32_t child = doc.addNode(parent, "child");  // pre-order index 1, handle 3
  doc.setNodeAnimated(child);
  doc.setNodeAnimated(late);

  const std::uint32_t walk = doc.addAnimation("walk");
  const std::uint32_t move = doc.addCurve(walk, child, GltfCurveKind::Translation);
  const std::uint32_t turn = doc.addCurve(walk, late, GltfCurveKind::Rotation);
  EXPECT_EQ(doc.addCurve(walk, late, GltfCurveKind::Scale), 2u);  // no keys: left out
  EXPECT_EQ(doc.addCurve(walk, doc.root(), GltfCurveKind::Scale), GltfDocument::kNone);
  const double a[4] = {1, 2, 3, 99}, b[4] = {0.1, 0, 0, 99}, q[4] = {0, 0, 0, 1};
  doc.addKey(walk, move, 0.5, a);
  doc.addKey(walk, move, 1.25, b);
  doc.addKey(walk, turn, 0.0, q);
  doc.addAnimation("still");  // no curve: not written
  doc.finishAnimation(walk);
  doc.addKey(walk, move, 2.0, a);  // after finishing: ignored

  const std::string json = doc.json("x.glb");
  EXPECT_NE(json.find(R"("accessors":[{"bufferView":0,"type":"SCALAR","componentType":5126,"count":2,)"
                      R"("min":[0.5],"max":[1.25]},{"bufferView":1,"type":"VEC3","componentType":5126,"count":2},)"
                      R"({"bufferView":2,"type":"SCALAR","componentType":5126,"count":1,"min":[0.0],"max":[0.0]},)"
                      R"({"bufferView":3,"type":"VEC4","componentType":5126,"count":1}],)"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find(R"("animations":[{"channels":[{"sampler":0,"target":{"node":1,"path":"translation"}},)"
                      R"({"sampler":1,"target":{"node":2,"path":"rotation"}}],)"
                      R"("samplers":[{"input":0,"output":1,"interpolation":"LINEAR"},)"
                      R"({"input":2,"output":3,"interpolation":"LINEAR"}],"name":"walk"}])"),
            std::string::npos)
      << json;

  ASSERT_TRUE(doc.write(dir / "anim.glb"));
  EXPECT_TRUE(isValidGltf(dir / "anim.glb"));
  // Times, then the keys' values with only the components the path has.
  const std::string bin = glbBin(readFile(dir / "anim.glb"));
  ASSERT_EQ(bin.size(), 4u * (2 + 6 + 1 + 4));
  const float expected[] = {0.5f, 1.25f, 1, 2, 3, 0.1f, 0, 0, 0, 0, 0, 0, 1};
  for (std::size_t i = 0; i < 13; ++i) EXPECT_EQ(floatAt(bin, 4 * i), expected[i]) << i;
}

TEST(GltfSkin, JointsAndSkeletonAreNodeIndicesWithOneMatrixEach) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t body = doc.addNode(doc.root(), "body");
  const std::uint32_t hips = doc.addNode(doc.root(), "hips");
  const std::uint32_t knee = doc.addNode(hips, "knee");
  const std::uint32_t skin = doc.addSkin("body_Skin");
  const std::vector<double> inverse = translation(0, -1, 0);
  EXPECT_EQ(doc.addSkinJoint(skin, knee, inverse.data()), 0u);
  EXPECT_EQ(doc.addSkinJoint(skin, hips, nullptr), 1u);
  EXPECT_EQ(doc.addSkinJoint(skin, doc.root(), nullptr), GltfDocument::kNone);
  doc.setSkinSkeleton(skin, hips);
  doc.setNodeSkin(body, skin);
  doc.addSkin("unused");  // no joints: not written
  // One skinned triangle, which a valid file needs for the skin.
  GltfPrimitiveDesc triangle;
  const std::vector<float> weights = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  triangle.attributes = {
      {"POSITION", doc.addFloatAccessor(GltfAccessorType::Vec3, std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}, true)},
      {"JOINTS_0", doc.addUShortAccessor(GltfAccessorType::Vec4, std::vector<std::uint16_t>(12, 0))},
      {"WEIGHTS_0", doc.addFloatAccessor(GltfAccessorType::Vec4, weights, false)}};
  doc.setNodeMesh(body, doc.addMesh());
  doc.addPrimitive(0, triangle);

  const std::string json = doc.json("x.glb");
  EXPECT_NE(json.find(R"("nodes":[{"name":"body","mesh":0,"skin":0},)"), std::string::npos) << json;
  EXPECT_NE(json.find(R"({"bufferView":3,"type":"MAT4","componentType":5126,"count":2}],)"), std::string::npos) << json;
  EXPECT_NE(json.find(R"("skins":[{"inverseBindMatrices":3,"skeleton":1,"joints":[2,1],"name":"body_Skin"}])"),
            std::string::npos)
      << json;
  // Finishing is done once: the second text and the file add no more data.
  ASSERT_TRUE(doc.write(dir / "skin.glb"));
  EXPECT_TRUE(isValidGltf(dir / "skin.glb"));
  const std::string bin = glbBin(readFile(dir / "skin.glb"));
  ASSERT_EQ(bin.size(), 36u + 24u + 48u + 2u * 64u);
  // The knee's matrix (translation y = -1 at 13), then the identity, diagonals at 0, 5, 10, 15.
  for (std::size_t i = 0; i < 32; ++i) {
    EXPECT_EQ(floatAt(bin, 108 + 4 * i), i == 13 ? -1.0f : i % 16 % 5 == 0 ? 1.0f : 0.0f) << i;
  }
}

}  // namespace
