// Node matrices through `vexo save`: local matrices keep every value the
// host gives up to single-precision rounding, and a child placed on its
// parent writes no transform at all.
#include <gtest/gtest.h>

#include <string>

#include "gltf_reader.h"
#include "save_and_read.h"
#include "vexo_runner.h"

namespace {

TEST(NodeMatrices, LocalMatricesKeepSmallValuesBesideLargeOnes) {
  const std::string scene = R"({
    "items": [
      { "name": "Parent", "type": "locator", "children": [
          { "name": "Far", "type": "locator", "position": [0.5, 0, 3e12] },
          { "name": "Beside", "type": "locator", "position": [1e-7, 0, 123456789] },
          { "name": "Tiny", "type": "locator", "position": [1e-13, 0, 0] } ] }
    ]
  })";
  TempDir dir;
  const SavedScene out = saveAndRead(dir, scene, "out.gltf", {"--set", "sceneio.gltf.save.exportType=0"});
  struct Expected {
    const char* name;
    double x, z;
  } expected[] = {{"Far", 0.5, 3e12}, {"Beside", 1e-7, 123456789}, {"Tiny", 1e-13, 0}};
  for (const Expected& e : expected) {
    const ReadNode* node = out.gltf.node(e.name);
    ASSERT_NE(node, nullptr) << e.name;
    EXPECT_EQ(node->local[12], static_cast<float>(e.x)) << e.name;
    EXPECT_EQ(node->local[14], static_cast<float>(e.z)) << e.name;
  }
  EXPECT_NE(out.bytes.find(R"({"name":"Tiny","matrix":)"), std::string::npos) << out.bytes;
}

TEST(NodeMatrices, AChildOnItsParentWritesNoTransform) {
  const std::string scene = R"({
    "items": [
      { "name": "Parent", "type": "locator", "position": [3.7, -12.25, 0.3], "rotation": [33, -71, 12.5],
        "rotationOrder": "ZXY", "scale": [2.5, 2.5, 2.5], "children": [
          { "name": "OnParent", "type": "locator" } ] }
    ]
  })";
  TempDir dir;
  const SavedScene out = saveAndRead(dir, scene, "out.gltf", {"--set", "sceneio.gltf.save.exportType=0"});
  EXPECT_NE(out.bytes.find(R"({"name":"OnParent"})"), std::string::npos) << out.bytes;
}

}  // namespace
