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

TEST(GltfNodes, NumberedDepthFirstWithChildrenAfterTheLastChild) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  // Created breadth first, so creation order and pre-order differ.
  const std::uint32_t a = doc.addNode(doc.root(), "a");
  const std::uint32_t e = doc.addNode(doc.root(), "e");
  const std::uint32_t b = doc.addNode(a, "b");
  const std::uint32_t c = doc.addNode(a, "c");
  doc.addNode(b, "d");
  EXPECT_EQ(doc.addNode(GltfDocument::kNone, "bad"), GltfDocument::kNone);
  doc.setNodeMatrix(a, kIdentity);
  const std::vector<double> moved = translation(1, 2, 3);
  doc.setNodeMatrix(c, moved.data());
  doc.setNodeCamera(a, doc.addCamera("cam", 0.1f, 0.8f));
  doc.setNodeMesh(e, 5);  // no such mesh: ignored

  EXPECT_EQ(doc.nodeCount(), 5u);
  EXPECT_EQ(doc.findNode("c"), c);
  EXPECT_EQ(doc.nodeParent(b), a);
  EXPECT_EQ(nodesOf(doc), R"("scenes":[{"nodes":[0,4]}],"nodes":[)"
                          R"({"name":"a","camera":0,"children":[1,3]},{"name":"b","children":[2]},{"name":"d"},)"
                          R"({"name":"c","matrix":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,1.0,2.0,3.0,1.0]},)"
                          R"({"name":"e"}])");
  ASSERT_TRUE(doc.write(dir / "nodes.glb"));
  EXPECT_TRUE(isValidGltf(dir / "nodes.glb"));
}

TEST(GltfNodes, IdentityIsJudgedAsWrittenWithoutTolerance) {
  GltfDocument doc(settingsFor(false, nullptr));
  std::vector<double> almost(kIdentity, kIdentity + 16);
  almost[5] = 1.0 + 1e-6;  // survives rounding to float
  std::vector<double> rounded(kIdentity, kIdentity + 16);
  rounded[1] = 1e-50;  // rounds to 0
  doc.setNodeMatrix(doc.addNode(doc.root(), "almost"), almost.data());
  doc.setNodeMatrix(doc.addNode(doc.root(), "rounded"), rounded.data());
  const std::string nodes = nodesOf(doc);
  EXPECT_NE(nodes.find(R"({"name":"almost","matrix":[)"), std::string::npos) << nodes;
  EXPECT_NE(nodes.find(R"({"name":"rounded"})"), std::string::npos) << nodes;
}

TEST(GltfNodes, AnimatedAndSkinnedNodesUseRotationTranslationScale) {
  for (const int skinnedMeshInWS : {0, 1}) {
    GltfDocument doc(settingsFor(false, nullptr, false, skinnedMeshInWS));
    const std::uint32_t animated = doc.addNode(doc.root(), "animated");
    const std::uint32_t skinned = doc.addNode(doc.root(), "skinned");
    const std::uint32_t jointless = doc.addNode(doc.root(), "jointless");
    const std::vector<double> moved = translation(0, 0, 5);
    for (const std::uint32_t node : {skinned, jointless}) doc.setNodeMatrix(node, moved.data());
    doc.setNodeAnimated(animated);
    const std::uint32_t skin = doc.addSkin("skin");
    doc.addSkinJoint(skin, animated, nullptr);
    doc.setNodeSkin(skinned, skin);
    doc.setNodeSkin(jointless, doc.addSkin("empty"));

    const std::string nodes = nodesOf(doc);
    EXPECT_NE(nodes.find(R"({"name":"animated","rotation":[0.0,0.0,0.0,1.0],"translation":[0.0,0.0,0.0],)"
                         R"("scale":[1.0,1.0,1.0]})"),
              std::string::npos)
        << nodes;
    const std::string trs = R"({"name":"skinned","rotation":[0.0,0.0,0.0,1.0],"translation":[0.0,0.0,5.0],)"
                            R"("scale":[1.0,1.0,1.0],"skin":0})";
    EXPECT_EQ(nodes.find(trs) != std::string::npos, skinnedMeshInWS == 1) << nodes;
    // A skin without joints is not written, so it does not count either.
    EXPECT_NE(nodes.find(R"({"name":"jointless","matrix":[)"), std::string::npos) << nodes;
    EXPECT_EQ(nodes.find(R"("skin":1)"), std::string::npos) << nodes;
  }
}

TEST(GltfNodes, DecomposesByTheTraceMethodWithoutRemovingScale) {
  const double kHalf = std::sqrt(0.5);
  // 90 degrees about Y (row vectors: v' = v M), translated.
  const double aboutY[16] = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 4, 5, 6, 1};
  GltfTrs trs = gltfDecompose(aboutY);
  EXPECT_NEAR(trs.rotation[1], kHalf, 1e-12);
  EXPECT_NEAR(trs.rotation[3], kHalf, 1e-12);
  EXPECT_NEAR(trs.rotation[0], 0.0, 1e-12);
  EXPECT_EQ(trs.translation[2], 6.0);

  // Half turns have a zero trace: the largest diagonal element picks the axis.
  const double halfX[16] = {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};
  trs = gltfDecompose(halfX);
  EXPECT_EQ(std::vector<double>(trs.rotation, trs.rotation + 4), (std::vector<double>{1, 0, 0, 0}));
  const double halfZ[16] = {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  trs = gltfDecompose(halfZ);
  EXPECT_EQ(std::vector<double>(trs.rotation, trs.rotation + 4), (std::vector<double>{0, 0, 1, 0}));

  // 90 degrees about Z, scaled by 2: the quaternion keeps the scale in it.
  const double scaled[16] = {0, 2, 0, 0, -2, 0, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
  trs = gltfDecompose(scaled);
  EXPECT_NEAR(trs.rotation[2], 2.0 / std::sqrt(3.0), 1e-12);
  EXPECT_NEAR(trs.rotation[3], std::sqrt(3.0) / 2.0, 1e-12);
  EXPECT_GT(std::hypot(trs.rotation[2], trs.rotation[3]), 1.4);

  // A mirrored axis still gives a positive scale.
  const double mirrored[16] = {-1, 0, 0, 0, 0, 2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 1};
  trs = gltfDecompose(mirrored);
  EXPECT_EQ(std::vector<double>(trs.scale, trs.scale + 3), (std::vector<double>{1, 2, 3}));
}

}  // namespace
