// The node hierarchy: which items become nodes, in what order, with which
// matrices, for each export type; checked against the host's own world
// matrices through an independent glTF reader.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "gltf_reader.h"
#include "host_scene.h"
#include "save_and_read.h"
#include "validator.h"
#include "vexo_runner.h"

namespace {

// Rotations in several orders, pivots, non-uniform scale and three levels.
// Non-uniform scale sits on a leaf: above a rotated child it would shear the
// child's world matrix, which glTF cannot hold where a world matrix is written.
const char* const kHierarchy = R"({
  "items": [
    { "name": "Root", "type": "locator", "position": [1, 2, 3], "rotation": [30, 45, 60],
      "rotationOrder": "ZXY", "scale": [1.5, 1.5, 1.5], "rotationPivot": [0.5, 0, -1],
      "children": [
        { "name": "Child1", "type": "locator", "position": [0, 1, 0], "rotation": [90, 0, 10],
          "rotationOrder": "YXZ",
          "children": [
            { "name": "Cam", "type": "camera", "position": [0, 0, 5], "rotation": [-10, 20, 0],
              "scale": [2, 2, 2], "scalePivot": [1, 1, 1],
              "channels": { "focalLen": 0.035, "apertureY": 0.024, "clipNear": 0.1 } }
          ] },
        { "name": "Lamp", "type": "pointLight", "position": [0, 3, 0],
          "children": [ { "name": "UnderLamp", "type": "locator" } ] },
        { "name": "MorphGroup", "type": "locator",
          "children": [ { "name": "UnderMorphGroup", "type": "locator" } ] },
        { "name": "Group", "type": "groupLocator" },
        { "name": "Morph", "type": "morphDeform" }
      ] },
    { "name": "Top2", "type": "locator", "position": [-1, 0, 0], "rotation": [0, 0, 135], "rotationOrder": "ZYX",
      "scale": [1, 2, 0.5] },
    { "name": "Texture", "type": "txtrLocator" },
    { "name": "LightMat", "type": "lightMaterial" },
    { "name": "TextureGroup", "type": "locator" }
  ],
  "selection": ["Child1", "Top2"],
  "itemList": ["Top2", "Child1", "Root"]
})";

// Saves the scene as .gltf with the extra arguments and reads it back.
SavedScene exportScene(const TempDir& dir, const std::string& scene, const std::vector<std::string>& extra = {}) {
  return saveAndRead(dir, scene, "out.gltf", extra);
}

void expectMatrixNear(const std::array<double, 16>& actual, const std::array<double, 16>& expected,
                      const std::string& what) {
  for (int i = 0; i < 16; ++i) {
    // Single-precision rounding of each node matrix, compounded over a few levels.
    const double tolerance = 2e-6 * std::max(1.0, std::fabs(expected[i])) * 4;
    EXPECT_NEAR(actual[i], expected[i], tolerance) << what << " element " << i;
  }
}

// Every exported node sits where the host puts its item.
void expectWorldMatricesMatchTheHost(const SavedScene& out, const std::string& scenePath) {
  const HostScene host(scenePath);
  ASSERT_TRUE(host.ok()) << host.error();
  for (const ReadNode& node : out.gltf.nodes) {
    std::array<double, 16> expected{};
    ASSERT_TRUE(host.worldMatrix(node.name, expected)) << node.name;
    expectMatrixNear(node.world, expected, node.name);
  }
}

TEST(Hierarchy, WholeSceneIsDepthFirstWithSkippedItemsLeftOut) {
  TempDir dir;
  const SavedScene out = exportScene(dir, kHierarchy, {"--set", "sceneio.gltf.save.exportType=0"});
  EXPECT_EQ(out.gltf.nodeNames(), (std::vector<std::string>{"Root", "Child1", "Cam", "Group", "Top2"}));
  ASSERT_EQ(out.gltf.scenes.size(), 1u);
  EXPECT_EQ(out.gltf.scenes[0], (std::vector<std::string>{"Root", "Top2"}));
  EXPECT_EQ(out.gltf.node("Root")->children, (std::vector<std::string>{"Child1", "Group"}));
  EXPECT_EQ(out.gltf.node("Child1")->children, std::vector<std::string>{"Cam"});

  // An identity transform writes no transform key; "children" follows "camera".
  EXPECT_NE(out.bytes.find(R"({"name":"Group"})"), std::string::npos) << out.bytes;
  EXPECT_NE(out.bytes.find(R"("camera":0})"), std::string::npos) << out.bytes;
  EXPECT_NE(out.bytes.find(R"("children":[2]})"), std::string::npos) << out.bytes;

  EXPECT_TRUE(out.run.printed("info: Root item:Root")) << out.run.errText();
  EXPECT_TRUE(out.run.printed("info: Root item:Top2"));
  // "Texture" and "TextureGroup" are parentless locators: roots that never become nodes.
  EXPECT_TRUE(out.run.printed("info: Scanning finished, rootItems:4"));
  EXPECT_TRUE(out.run.printed("info:    driven:0 xformDriven:0"));
  EXPECT_TRUE(out.run.printed("info:    Using Local matrix"));
  EXPECT_FALSE(out.run.printed("info:    Using World matrix"));
}

TEST(Hierarchy, WorldMatricesMatchTheHost) {
  TempDir dir;
  const SavedScene out = exportScene(dir, kHierarchy, {"--set", "sceneio.gltf.save.exportType=0"});
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
}

TEST(Hierarchy, DeepChainsKeepTheirWorldPlacement) {
  // Twelve levels, each rotated in a different order and scaled unevenly.
  std::string items;
  const char* orders[] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};
  for (int level = 11; level >= 0; --level) {
    std::string children = items.empty() ? "" : ", \"children\": [" + items + "]";
    items = "{ \"name\": \"L" + std::to_string(level) + "\", \"type\": \"locator\", \"position\": [" +
            std::to_string(level % 3) + ", 0.5, -1], \"rotation\": [" + std::to_string(7 * level) + ", 13, " +
            std::to_string(-5 * level) + "], \"rotationOrder\": \"" + orders[level % 6] +
            "\", \"scale\": [1.1, 0.9, 1.05], \"rotationPivot\": [0.2, 0.1, 0]" + children + " }";
  }
  TempDir dir;
  const SavedScene out = exportScene(dir, "{ \"items\": [" + items + "] }", {"--set", "sceneio.gltf.save.exportType=0"});
  ASSERT_EQ(out.gltf.nodes.size(), 12u);
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
}

TEST(Hierarchy, FlattenedParentsKeepTheHostsPlacement) {
  // A scale of 0 has no inverse: the child below carries its own stack, and
  // the flattened nodes are written as translation, rotation and scale.
  const char* const scene = R"({
    "items": [
      { "name": "Flat", "type": "locator", "position": [1, 2, 3], "rotation": [10, 20, 30], "scale": [0, 1, 1],
        "children": [ { "name": "OnFlat", "type": "locator", "position": [1, 0.5, 0], "rotation": [0, 45, 0] } ] },
      { "name": "Line", "type": "locator", "scale": [0, 0, 2] },
      { "name": "Mirror", "type": "locator", "scale": [-1, 0, 1] }
    ]
  })";
  TempDir dir;
  const SavedScene out = exportScene(dir, scene, {"--set", "sceneio.gltf.save.exportType=0"});
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
  EXPECT_NE(out.bytes.find(R"({"name":"Line","scale":[0.0,0.0,2.0]})"), std::string::npos) << out.bytes;
  EXPECT_NE(out.bytes.find(R"({"name":"Mirror","rotation":[0.0,0.0,1.0,0.0],"scale":[1.0,0.0,1.0]})"),
            std::string::npos)
      << out.bytes;
}

TEST(Hierarchy, GroupsAndDrivenParentsKeepTheHostsPlacement) {
  // Items that are no locators pass their parent's frame on; a linked
  // "parentMatrix" moves its item, not the node it hangs under.
  const char* const scene = R"({
    "items": [
      { "name": "Base", "type": "locator", "position": [10, 0, 0], "children": [
          { "name": "Bunch", "type": "group", "children": [
              { "name": "InGroup", "type": "locator", "position": [0, 0, 3] } ] } ] },
      { "name": "Crane", "type": "locator", "position": [0, 7, 0] },
      { "name": "Hook", "type": "locator", "position": [0, 0, 5], "children": [
          { "name": "Load", "type": "locator", "position": [1, 0, 0] } ] }
    ],
    "links": [ { "from": "Crane.worldMatrix", "to": "Hook.parentMatrix" } ]
  })";
  TempDir dir;
  const SavedScene out = exportScene(dir, scene, {"--set", "sceneio.gltf.save.exportType=0"});
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
  const struct {
    const char* name;
    double x, y, z;
  } placed[] = {{"InGroup", 10, 0, 3}, {"Hook", 0, 7, 5}, {"Load", 1, 7, 5}};
  for (const auto& p : placed) {
    const ReadNode* node = out.gltf.node(p.name);
    ASSERT_NE(node, nullptr) << p.name;
    EXPECT_EQ(node->world[12], p.x) << p.name;
    EXPECT_EQ(node->world[13], p.y) << p.name;
    EXPECT_EQ(node->world[14], p.z) << p.name;
  }
}

TEST(Hierarchy, CameraValuesAreKeptWhereGltfAllowsThem) {
  const char* const scene = R"({
    "items": [
      { "name": "Pinhole", "type": "camera", "channels": { "apertureY": 1e-50, "clipNear": 1e-46 } },
      { "name": "Wide", "type": "camera", "channels": { "apertureY": 1e50, "clipNear": 1e300 } }
    ]
  })";
  TempDir dir;
  const SavedScene out = exportScene(dir, scene, {"--set", "sceneio.gltf.save.exportType=0"});
  ASSERT_EQ(out.gltf.cameras.size(), 2u);
  EXPECT_EQ(out.gltf.cameras[0].znear, static_cast<double>(FLT_MIN));
  EXPECT_EQ(out.gltf.cameras[0].yfov, static_cast<double>(FLT_MIN));
  EXPECT_EQ(static_cast<float>(out.gltf.cameras[1].znear), FLT_MAX);
  EXPECT_LT(out.gltf.cameras[1].yfov, M_PI);
  EXPECT_TRUE(out.run.printed("warning: Camera:Pinhole znear 1e-46 is out of range; written as 1.17549435e-38"))
      << out.run.errText();
  EXPECT_TRUE(out.run.printed("warning: There are 4 warnings and 0 errors reported to event log"));
}

TEST(Hierarchy, SelectionExportsSelectedItemsAloneInWorldSpace) {
  TempDir dir;
  const SavedScene out = exportScene(dir, kHierarchy);  // export type 1 is the default
  EXPECT_EQ(out.gltf.nodeNames(), (std::vector<std::string>{"Child1", "Top2"}));
  EXPECT_TRUE(out.gltf.node("Child1")->children.empty());
  EXPECT_TRUE(out.run.printed("info: Child1"));
  EXPECT_TRUE(out.run.printed("info:    Using World matrix"));

  const HostScene host(dir.file("scene.json"));
  std::array<double, 16> expected{};
  ASSERT_TRUE(host.worldMatrix("Child1", expected));
  expectMatrixNear(out.gltf.node("Child1")->world, expected, "Child1");
}

TEST(Hierarchy, SelectedParentComesWithoutItsChildren) {
  TempDir dir;
  const SavedScene out = exportScene(dir, kHierarchy, {"--select", "Root"});
  EXPECT_EQ(out.gltf.nodeNames(), (std::vector<std::string>{"Child1", "Top2", "Root"}));
  EXPECT_TRUE(out.gltf.node("Root")->children.empty());
  EXPECT_EQ(out.gltf.scenes[0], (std::vector<std::string>{"Child1", "Top2", "Root"}));
}

TEST(Hierarchy, ItemListExportsItsParentlessItemsWithChildren) {
  TempDir dir;
  const SavedScene out = exportScene(dir, kHierarchy, {"--set", "sceneio.gltf.save.exportType=2"});
  EXPECT_EQ(out.gltf.nodeNames(), (std::vector<std::string>{"Top2", "Root", "Child1", "Cam", "Group"}));
  EXPECT_EQ(out.gltf.scenes[0], (std::vector<std::string>{"Top2", "Root"}));
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
}

TEST(Hierarchy, CamerasFollowTheirOption) {
  TempDir dir;
  const SavedScene with = exportScene(dir, kHierarchy, {"--set", "sceneio.gltf.save.exportType=0"});
  ASSERT_EQ(with.gltf.cameras.size(), 1u);
  EXPECT_EQ(with.gltf.cameras[0].name, "Cam");
  EXPECT_EQ(with.gltf.cameras[0].type, "perspective");
  EXPECT_FLOAT_EQ(with.gltf.cameras[0].znear, 0.1f);
  EXPECT_FLOAT_EQ(with.gltf.cameras[0].yfov, static_cast<float>(2.0 * std::atan(0.024 / (2.0 * 0.035))));
  EXPECT_NE(with.bytes.find(R"("perspective":{"znear":0.10000000149011612,"yfov":)"), std::string::npos);
  EXPECT_EQ(with.gltf.node("Cam")->camera, 0);

  TempDir other;
  const SavedScene without = exportScene(other, kHierarchy,
                                     {"--set", "sceneio.gltf.save.exportType=0", "--set", "sceneio.gltf.save.cameras=0"});
  EXPECT_EQ(without.gltf.nodeNames(), (std::vector<std::string>{"Root", "Child1", "Group", "Top2"}));
  EXPECT_TRUE(without.gltf.cameras.empty());
  EXPECT_EQ(without.bytes.find("\"cameras\""), std::string::npos);
}

TEST(Hierarchy, CustomStacksAndDrivenChannels) {
  const std::string scene = R"({
    "items": [
      { "name": "Driver", "type": "locator", "position": [0.5, 0, 0] },
      { "name": "Rig", "type": "locator", "transforms": [
          { "type": "transform", "name": "ScalePivotCompensation", "position": [-1, 0, 0] },
          { "type": "scale", "name": "Scale", "main": true, "values": [2, 2, 2] },
          { "type": "translation", "name": "ScalePivot", "values": [1, 0, 0] },
          { "type": "rotation", "name": "RotationPost", "values": [0, 10, 0] },
          { "type": "rotation", "name": "Rotation", "main": true, "values": [0, 90, 0], "order": "YXZ" },
          { "type": "rotation", "name": "RotationPre", "values": [5, 0, 0] },
          { "type": "transform", "name": "Mount", "position": [0, 1, 0], "rotation": [0, 0, 45] },
          { "type": "translation", "name": "Position", "main": true, "values": [3, 0, 0] } ],
        "children": [ { "name": "Tip", "type": "locator", "position": [0, 0, 1] } ] }
    ],
    "links": [
      { "from": "Driver/Position.pos.X", "to": "Rig/Rotation.rot.Z" },
      { "from": "Driver.visible", "to": "Rig.visible" }
    ]
  })";
  TempDir dir;
  const SavedScene out = exportScene(dir, scene, {"--set", "sceneio.gltf.save.exportType=0"});
  expectWorldMatricesMatchTheHost(out, dir.file("scene.json"));
  const VexoRun& run = out.run;
  EXPECT_TRUE(run.printed("info:    Driven channel:visible")) << run.errText();
  EXPECT_TRUE(run.printed("info:    Driven xform channel:Rotation.rot.Z"));
  EXPECT_TRUE(run.printed("info:    driven:1 xformDriven:1"));
  EXPECT_EQ(std::count(run.errLines.begin(), run.errLines.end(), "info:    driven:0 xformDriven:0"), 2);
}

TEST(Examples, EveryExportTypeAndFormIsValid) {
  struct Case {
    const char* scene;
    const char* exportType;
  };
  const Case cases[] = {{"hierarchy.json", "0"}, {"hierarchy.json", "1"}, {"hierarchy.json", "2"},
                        {"meshes.json", "0"},    {"meshes.json", "1"},    {"textured.json", "1"},
                        {"materials.json", "0"}, {"skinned_arm.json", "0"}, {"animated.json", "0"}};
  for (const Case& example : cases) {
    for (const char* form : {"gltf", "glb"}) {
      SCOPED_TRACE(std::string(example.scene) + " export type " + example.exportType + " " + form);
      TempDir dir;
      const std::string dest = dir.file(std::string("out.") + form);
      const VexoRun run = runVexo({"save", std::string(GLTFIO_EXAMPLES_DIR "/") + example.scene, dest, "--set",
                                   std::string("sceneio.gltf.save.exportType=") + example.exportType});
      EXPECT_EQ(run.exitCode, 0) << run.errText();
      EXPECT_TRUE(isValidGltf(dest));
      ReadGltf gltf;
      std::string problem;
      ASSERT_TRUE(readGltf(dest, gltf, problem)) << problem;
      EXPECT_FALSE(gltf.nodes.empty());
    }
  }
}

}  // namespace
