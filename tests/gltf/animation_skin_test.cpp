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
  const std::uint32_t unused = doc.addCurve(walk, late, GltfCurveKind::Scale);
  EXPECT_EQ(doc.addCurve(walk, doc.root(), GltfCurveKind::Scale), GltfDocument::kNone);
  const double a[4] = {1, 2, 3, 99}, b[4] = {0.1, 0, 0, 99}, q[4] = {0, 0, 0, 1};
  doc.addKey(walk, move, 0.5, a);
  doc.addKey(walk, move, 1.25, b);
  doc.addKey(walk, turn, 0.0, q);
  EXPECT_EQ(unused, 2u);
  doc.addAnimation("still");  // no curve: not written
  doc.finishAnimation(walk);
  doc.addKey(walk, move, 2.0, a);  // after finishing: ignored

  const auto json = parseJson(doc.json("x.glb"));
  ASSERT_EQ(json["animations"].Size(), 1u);
  const auto& animation = json["animations"][0];
  EXPECT_STREQ(animation["name"].GetString(), "walk");
  ASSERT_EQ(animation["channels"].Size(), 2u);
  EXPECT_EQ(animation["channels"][0]["target"]["node"].GetUint(), 1u);
  EXPECT_STREQ(animation["channels"][0]["target"]["path"].GetString(), "translation");
  EXPECT_EQ(animation["channels"][1]["target"]["node"].GetUint(), 2u);
  EXPECT_STREQ(animation["channels"][1]["target"]["path"].GetString(), "rotation");
  EXPECT_EQ(animation["channels"][1]["sampler"].GetUint(), 1u);

  const auto& sampler = animation["samplers"][0];
  EXPECT_STREQ(sampler["interpolation"].GetString(), "LINEAR");
  const auto& input = json["accessors"][sampler["input"].GetUint()];
  const auto& output = json["accessors"][sampler["output"].GetUint()];
  EXPECT_EQ(input["count"].GetUint(), 2u);
  EXPECT_EQ(input["min"][0].GetDouble(), 0.5);
  EXPECT_EQ(input["max"][0].GetDouble(), 1.25);
  EXPECT_STREQ(output["type"].GetString(), "VEC3");
  EXPECT_EQ(output["count"].GetUint(), 2u);
  EXPECT_STREQ(json["accessors"][animation["samplers"][1]["output"].GetUint()]["type"].GetString(), "VEC4");
  // Two 2-key curves of 3 floats, one 1-key curve of 4 floats, with their times.
  EXPECT_EQ(doc.bufferByteLength(), 4u * (2 + 6 + 1 + 4));

  ASSERT_TRUE(doc.write(dir / "anim.glb"));
  EXPECT_TRUE(isValidGltf(dir / "anim.glb"));
}

TEST(GltfSkin, JointsAndSkeletonAreNodeIndicesWithOneMatrixEach) {
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
  EXPECT_EQ(doc.skinJointCount(skin), 2u);
  doc.addSkin("unused");  // no joints: not written

  const auto json = parseJson(doc.json("x.glb"));
  ASSERT_EQ(json["skins"].Size(), 1u);
  const auto& written = json["skins"][0];
  EXPECT_EQ(written["skeleton"].GetUint(), 1u);
  EXPECT_EQ(written["joints"][0].GetUint(), 2u);
  EXPECT_EQ(written["joints"][1].GetUint(), 1u);
  EXPECT_STREQ(written["name"].GetString(), "body_Skin");
  const auto& matrices = json["accessors"][written["inverseBindMatrices"].GetUint()];
  EXPECT_STREQ(matrices["type"].GetString(), "MAT4");
  EXPECT_EQ(matrices["count"].GetUint(), 2u);
  EXPECT_EQ(json["nodes"][0]["skin"].GetUint(), 0u);
  EXPECT_EQ(doc.bufferByteLength(), 2u * 64u);
  // Finishing is done once: a second text adds no more data.
  doc.json("x.glb");
  EXPECT_EQ(doc.bufferByteLength(), 2u * 64u);
}

}  // namespace
