// Node numbering, transform keys and the matrix decomposition.
#include <gtest/gtest.h>

#include <cmath>

#include "test_util.h"
#include "validator.h"

namespace {

const double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

std::string nodesOf(GltfDocument& doc) {
  const std::string json = doc.json("x.glb");
  const std::size_t begin = json.find(R"("scenes":)");
  return json.substr(begin, json.find(R"(,"meshes":)") - begin);
}

TEST(GltfNodes, NumberedDepthFirstWithTransformKeysJudgedAsWritten) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  // Created breadth first, so creation order and pre-order differ.
  const std::uint32_t a = doc.addNode(doc.root(), "a");
  const std::uint32_t e = doc.addNode(doc.root(), "e");
  const std::uint32_t b = doc.addNode(a, "b");
  const std::uint32_t c = doc.addNode(a, "c");
  doc.addNode(b, "d");
  EXPECT_EQ(doc.addNode(GltfDocument::kNone, "bad"), GltfDocument::kNone);
  EXPECT_EQ(doc.findNode("c"), c);
  // The identity test has no tolerance: it compares the floats that would be written.
  std::vector<double> rounded(kIdentity, kIdentity + 16), almost(kIdentity, kIdentity + 16);
  rounded[1] = 1e-50;
  almost[1] = 0x1p-20;
  doc.setNodeMatrix(a, rounded.data());
  doc.setNodeMatrix(e, almost.data());
  doc.setNodeMatrix(c, translation(1, 2, 3).data());
  doc.setNodeCamera(a, doc.addCamera("cam", 0.1f, 0.8f));
  doc.setNodeMesh(e, 5);  // no such mesh: ignored

  EXPECT_EQ(nodesOf(doc), R"("scenes":[{"nodes":[0,4]}],"nodes":[)"
                          R"({"name":"a","camera":0,"children":[1,3]},{"name":"b","children":[2]},{"name":"d"},)"
                          R"({"name":"c","matrix":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,1.0,2.0,3.0,1.0]},)"
                          R"({"name":"e","matrix":[1.0,9.5367431640625e-7,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,)"
                          R"(0.0,0.0,0.0,1.0]}])");
  ASSERT_TRUE(doc.write(dir / "nodes.glb"));
  EXPECT_TRUE(isValidGltf(dir / "nodes.glb"));
}

TEST(GltfNodes, AnimatedAndSkinnedNodesUseRotationTranslationScale) {
  const std::string trs = R"("rotation":[0.0,0.0,0.0,1.0],"translation":[0.0,0.0,5.0],"scale":[1.0,1.0,1.0])";
  const std::string matrix = R"("matrix":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,5.0,1.0])";
  for (const int skinnedMeshInWS : {0, 1}) {
    GltfDocument doc(settingsFor(false, nullptr, false, skinnedMeshInWS));
    const std::uint32_t animated = doc.addNode(doc.root(), "animated");
    const std::uint32_t skinned = doc.addNode(doc.root(), "skinned");
    const std::uint32_t jointless = doc.addNode(doc.root(), "jointless");
    for (const std::uint32_t node : {skinned, jointless}) doc.setNodeMatrix(node, translation(0, 0, 5).data());
    doc.setNodeAnimated(animated);
    const std::uint32_t skin = doc.addSkin("skin");
    doc.addSkinJoint(skin, animated, nullptr);
    doc.setNodeSkin(skinned, skin);
    // A skin without joints is not written, so it does not count either.
    doc.setNodeSkin(jointless, doc.addSkin("empty"));
    EXPECT_EQ(nodesOf(doc), R"("scenes":[{"nodes":[0,1,2]}],"nodes":[{"name":"animated",)"
                            R"("rotation":[0.0,0.0,0.0,1.0],"translation":[0.0,0.0,0.0],"scale":[1.0,1.0,1.0]},)"
                            R"({"name":"skinned",)" + (skinnedMeshInWS == 1 ? trs : matrix) +
                                R"(,"skin":0},{"name":"jointless",)" + matrix + "}]");
  }
}

TEST(GltfNodes, DecomposesByTheTraceMethodWithoutRemovingScale) {
  const double h = std::sqrt(0.5);
  struct Case {
    const char* what;
    double m[16];  // row vectors: v' = v M
    double rotation[4];
    double translation[3];
    double scale[3];
  };
  const Case cases[] = {
      {"90 degrees about Y, moved", {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 4, 5, 6, 1}, {0, h, 0, h}, {4, 5, 6}, {1, 1, 1}},
      // Half turns have a zero trace: the largest diagonal element picks the axis.
      {"half turn about X", {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1}, {1, 0, 0, 0}, {0, 0, 0}, {1, 1, 1}},
      {"half turn about Y", {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1}, {0, 1, 0, 0}, {0, 0, 0}, {1, 1, 1}},
      {"half turn about Z", {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, {0, 0, 1, 0}, {0, 0, 0}, {1, 1, 1}},
      // The quaternion keeps the scale in it.
      {"90 degrees about Z, scaled by 2",
       {0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1},
       {0, 0, 2 / std::sqrt(3.0), std::sqrt(3.0) / 2},
       {0, 0, 0},
       {2, 2, 2}},
      // A mirrored axis still gives a positive scale.
      {"mirrored X", {-1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1}, {0, 0, 0, std::sqrt(5.0) / 2}, {0, 0, 0}, {1, 2, 3}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const GltfTrs trs = gltfDecompose(c.m);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(trs.rotation[i], c.rotation[i], 1e-12) << i;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(trs.translation[i], c.translation[i]) << i;
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(trs.scale[i], c.scale[i], 1e-12) << i;
  }
}

}  // namespace
