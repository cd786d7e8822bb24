// Locators as scene files give them and the module sees them: transform
// stacks, world, local and parent matrices, matrix channels, links and the
// item list.
#include <gtest/gtest.h>

#include <cmath>

#include "scene_fixture.h"

namespace vexo {
namespace {

std::string locatorScene(const std::string& fields) {
  return R"({"items": [{"name": "L", "type": "locator", )" + fields + "}]}";
}

const double kDegree = std::acos(-1.0) / 180.0;

// "Name:type" for each item of a locator's stack, main ones marked with a "*".
std::vector<std::string> stackOf(SceneFixture& f, const std::string& ref) {
  std::vector<std::string> entries;
  IVxLocator* view = f.locator(ref);
  if (!view) return entries;
  for (unsigned i = 0; i < view->TransformCount(); ++i) {
    IVxItem* t = view->TransformByIndex(i);
    bool main = false;
    for (VxMainTransform which : {VX_XFRM_POSITION, VX_XFRM_ROTATION, VX_XFRM_SCALE})
      main = main || view->MainTransform(which) == t;
    entries.push_back(std::string(t->Name()) + ":" + f.scene.types().type(t->Type())->name + (main ? "*" : ""));
  }
  return entries;
}

// Each expected point was worked out by hand, one step of the stack at a time.
TEST(Locator, StacksMovePointsAsTheirPartsSay) {
  const double cos30 = std::cos(30 * kDegree);
  const std::string pivot = R"("rotation": [0, 0, 90], "rotationPivot": [1, 0, 0], "position": [0, 0, 5])";
  const std::string scalePivot = R"("scale": [2, 3, 4], "scalePivot": [0, 1, 1])";
  const struct {
    std::string fields;
    Vector3 point, expected;
  } cases[] = {
      // X 90, Y 180, Z -90 degrees move (1, 2, 3) differently in every order, first axis first.
      {R"("rotation": [90, 180, -90], "rotationOrder": "XYZ")", {1, 2, 3}, {-3, 1, -2}},
      {R"("rotation": [90, 180, -90], "rotationOrder": "XZY")", {1, 2, 3}, {3, -1, -2}},
      {R"("rotation": [90, 180, -90], "rotationOrder": "YXZ")", {1, 2, 3}, {3, 1, 2}},
      {R"("rotation": [90, 180, -90], "rotationOrder": "YZX")", {1, 2, 3}, {2, 3, 1}},
      {R"("rotation": [90, 180, -90], "rotationOrder": "ZXY")", {1, 2, 3}, {-2, -3, 1}},
      {R"("rotation": [90, 180, -90], "rotationOrder": "ZYX")", {1, 2, 3}, {-2, 3, -1}},
      // Positive angles turn right-handed.
      {R"("rotation": [0, 0, 30])", {1, 0, 0}, {cos30, 0.5, 0}},
      {R"("rotation": [30, 0, 0])", {0, 1, 0}, {0, cos30, 0.5}},
      {R"("rotation": [0, 30, 0])", {0, 0, 1}, {0.5, 0, cos30}},
      // Pivots stay in place; the points beside them turn or scale about them.
      {pivot, {1, 0, 0}, {1, 0, 5}},
      {pivot, {2, 0, 0}, {1, 1, 5}},
      {scalePivot, {0, 1, 1}, {0, 1, 1}},
      {scalePivot, {1, 2, 2}, {2, 4, 5}},
      {R"("rotation": [20, -35, 70], "rotationOrder": "YZX", "scale": [2, 0.5, 3], "rotationPivot": [1, 2, 3],
          "scalePivot": [1, 2, 3], "preRotation": [10, 0, 0], "postRotation": [0, 0, 15])",
       {1, 2, 3},
       {1, 2, 3}},
      // Post rotation applies before the main rotation, pre rotation after it: (1, 2, 3) -> scale offset
      // (1, 22, 3) -> X 90 (1, -3, 22) -> Z 90 (3, 1, 22) -> Y 90 (22, 1, -3) -> rotation offset.
      {R"("rotation": [0, 0, 90], "postRotation": [90, 0, 0], "preRotation": [0, 90, 0],
          "rotationOffset": [10, 0, 0], "scaleOffset": [0, 20, 0])",
       {1, 2, 3},
       {32, 1, -3}},
      // Shear x += 0.5 * 2, y += 0.25 * 4 -> (2, 3, 4); scale (4, 6, 8); Z 90 (-6, 4, 8); move (-6, 4, 18).
      {R"("transforms": [{"type": "shear", "name": "Lean", "values": [0.5, 0, 0.25]},
          {"type": "transform", "name": "Stage", "position": [0, 0, 10], "rotation": [0, 0, 90],
           "scale": [2, 2, 2], "order": "ZYX"}])",
       {1, 2, 4},
       {-6, 4, 18}},
  };
  for (const auto& c : cases) {
    SceneFixture f(locatorScene(c.fields));
    expectPointNear(transformPoint(f.world("L"), c.point), c.expected, c.fields);
  }
}

TEST(Locator, ThreeLevelsCombineLocalWithParentWorld) {
  SceneFixture f(R"({"items": [
    {"name": "Root", "type": "locator", "position": [10, 0, 0], "rotation": [0, 0, 90],
     "children": [{"name": "Mid", "type": "groupLocator", "position": [1, 0, 0], "scale": [2, 1, 1],
                   "children": [{"name": "Leaf", "type": "camera", "position": [0, 1, 0]}]}]}]})");
  const Matrix midWorld = {0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 1, 0, 1};
  // Row vectors: X scales to 2 and turns onto Y, Y turns onto -X; the translation is the last row.
  expectMatrixNear(f.world("Mid"), midWorld, "Mid world");
  expectMatrixNear(f.parentWorld("Leaf"), midWorld, "Leaf parent");
  expectMatrixNear(f.local("Leaf"), translationMatrix({0, 1, 0}), "Leaf local");
  expectMatrixNear(f.parentWorld("Root"), identityMatrix(), "Root parent");
  expectMatrixNear(f.world("Leaf"), {0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 9, 1, 0, 1}, "Leaf world");
}

// A "group" (no locator) between two locators passes its parent's frame on, as the exported nodes do.
TEST(Locator, ItemsThatAreNoLocatorsAreTransparentInTheHierarchy) {
  SceneFixture f(R"({"items": [
    {"name": "Root", "type": "locator", "position": [10, 0, 0], "children": [
      {"name": "Team", "type": "group", "children": [
        {"name": "Crew", "type": "actor", "children": [{"name": "Leaf", "type": "locator", "position": [0, 0, 3]}]}]}]},
    {"name": "Loose", "type": "group", "children": [{"name": "Top", "type": "locator", "position": [0, 2, 0]}]}]})");
  expectMatrixNear(f.parentWorld("Leaf"), translationMatrix({10, 0, 0}), "Leaf parent world");
  expectMatrixNear(f.world("Leaf"), translationMatrix({10, 0, 3}), "Leaf world");
  Matrix channel{};
  ASSERT_EQ(f.reader()->Matrix(f.item("Leaf"), f.channel("Leaf", "parentMatrix"), channel.data()), VXR_OK);
  expectMatrixNear(channel, translationMatrix({10, 0, 0}), "Leaf parentMatrix channel");
  // No locator above: the world frame.
  expectMatrixNear(f.parentWorld("Top"), identityMatrix(), "Top parent world");
  expectMatrixNear(f.world("Top"), translationMatrix({0, 2, 0}), "Top world");
}

TEST(Locator, MatrixChannelsReadWhatTheLocatorComputesAndMirrorsKeepAProperRotation) {
  SceneFixture f(R"({"items": [
    {"name": "Root", "type": "locator", "position": [10, 0, 0], "rotation": [0, 0, 90],
     "children": [{"name": "Leaf", "type": "locator", "position": [0, 1, 0], "scale": [2, -3, 4]}]}]})");
  IVxItem* leaf = f.item("Leaf");
  ReadPtr read = f.reader();
  auto channel = [&](const char* name) {
    Matrix m{};
    VxChannelType type{};
    const unsigned index = f.channel("Leaf", name);
    EXPECT_EQ(leaf->ChannelType(index, &type), VXR_OK);
    EXPECT_EQ(type, VX_CHAN_MATRIX) << name;
    EXPECT_EQ(read->Matrix(leaf, index, m.data()), VXR_OK) << name;
    return m;
  };
  expectMatrixNear(channel("worldMatrix"), {0, 2, 0, 0, 3, 0, 0, 0, 0, 0, 4, 0, 9, 0, 0, 1}, "worldMatrix");
  expectMatrixNear(channel("localMatrix"), f.local("Leaf"), "localMatrix");
  expectMatrixNear(channel("parentMatrix"), f.world("Root"), "parentMatrix");
  expectMatrixNear(channel("wposMatrix"), translationMatrix({9, 0, 0}), "wposMatrix");
  // The mirror goes to the first scale axis, so that the rotation stays a rotation.
  expectMatrixNear(channel("wsclMatrix"), scaleMatrix({-2, 3, 4}), "wsclMatrix");
  expectMatrixNear(channel("wrotMatrix"), {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, "wrotMatrix");
}

TEST(Locator, TransformItemsAreItemsOfTheirOwn) {
  SceneFixture f(R"({"items": [{"name": "A", "type": "locator", "children": [{"name": "B", "type": "locator"}]},
                               {"name": "Render", "type": "polyRender"}]})");
  IVxLocator* a = f.locator("A");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->TransformCount(), 3u);
  const VxMainTransform mains[] = {VX_XFRM_SCALE, VX_XFRM_ROTATION, VX_XFRM_POSITION};
  for (unsigned i = 0; i < 3; ++i) {
    IVxItem* t = a->TransformByIndex(i);
    EXPECT_EQ(a->MainTransform(mains[i]), t);
    EXPECT_EQ(t->Parent(), nullptr);
    EXPECT_EQ(f.sdk.ItemByIndex(VX_TYPE_ANY, 2 + i), t);  // in scene order after the locator, before its child
  }
  EXPECT_EQ(a->TransformByIndex(3), nullptr);
  EXPECT_EQ(a->MainTransform(static_cast<VxMainTransform>(3)), nullptr);
  // Items that are no locators have no locator view.
  IVxLocator* none = nullptr;
  EXPECT_EQ(f.sdk.LocatorService()->LocatorLookup(f.item("Render"), &none), VXR_NOTFOUND);
  EXPECT_EQ(f.sdk.LocatorService()->LocatorLookup(a->TransformByIndex(0), &none), VXR_NOTFOUND);
}

TEST(LocatorSceneFile, ShorthandBuildsTheStackInApplicationOrder) {
  SceneFixture f(R"({"items": [
    {"name": "Plain", "type": "locator"},
    {"name": "Full", "type": "locator", "id": "full01", "position": [1, 2, 3], "rotation": [90, 0, -45],
     "rotationOrder": "ZYX", "scale": [2, 2, 2], "rotationPivot": [0.5, 0, 0], "scalePivot": [0, 0.25, 0],
     "rotationOffset": [0, 0, 1], "scaleOffset": [1, 0, 0], "preRotation": [0, 30, 0], "postRotation": [0, 0, 60]},
    {"name": "Pivoted", "type": "mesh", "rotationPivot": [1, 1, 1]}]})");
  EXPECT_EQ(stackOf(f, "Plain"), (std::vector<std::string>{"Scale:scale*", "Rotation:rotation*", "Position:translation*"}));
  EXPECT_EQ(stackOf(f, "Full"),
            (std::vector<std::string>{"ScalePivotCompensation:transform", "Scale:scale*", "ScalePivot:translation",
                                      "ScaleOffset:translation", "RotationPivotCompensation:transform",
                                      "RotationPost:rotation", "Rotation:rotation*", "RotationPre:rotation",
                                      "RotationPivot:translation", "RotationOffset:translation",
                                      "Position:translation*"}));
  EXPECT_EQ(stackOf(f, "Pivoted"),
            (std::vector<std::string>{"Scale:scale*", "RotationPivotCompensation:transform", "Rotation:rotation*",
                                      "RotationPivot:translation", "Position:translation*"}));

  // Transform items take "LOCATOR-ID/NAME" as their id; angles become radians.
  EXPECT_NEAR(f.number("full01/Rotation", "rot.Z"), -45 * kDegree, 1e-15);
  EXPECT_EQ(f.number("full01/Rotation", "order"), 5.0);
}

TEST(LocatorSceneFile, TransformsListAnyStack) {
  SceneFixture f(R"({"items": [
    {"name": "Rig", "type": "locator", "transforms": [
      {"type": "translation", "name": "Position", "main": true, "values": [1, 0, 0], "actions": {"edit": {"pos.X": 4}}},
      {"type": "shear", "name": "Skew", "id": "skew", "values": [0.1, 0.2, 0.3]},
      {"type": "rotation", "name": "Spin", "main": true, "values": [0, 0, 90], "order": "YXZ"},
      {"type": "rotation", "name": "Extra", "channels": {"rot.Y": 1.5}},
      {"type": "transform", "name": "Stage", "position": [0, 0, 2], "rotation": [0, 180, 0], "scale": [1, 2, 3]},
      {"type": "translation", "name": "Position", "main": false}]},
    {"name": "Bare", "type": "locator", "transforms": []}]})");
  EXPECT_EQ(stackOf(f, "Rig"), (std::vector<std::string>{"Position:translation*", "Skew:shear", "Spin:rotation*",
                                                         "Extra:rotation", "Stage:transform",
                                                         "Position:translation"}));
  EXPECT_EQ(f.number("skew", "shr.YZ"), 0.3);
  EXPECT_EQ(f.number("Rig/Position", "pos.X"), 4.0);  // the edit action's value
  EXPECT_EQ(f.number("Rig/Position (2)", "pos.X"), 0.0);
  EXPECT_EQ(f.number("Rig/Spin", "order"), 2.0);
  EXPECT_EQ(f.number("Rig/Extra", "rot.Y"), 1.5);  // raw channel values are radians
  EXPECT_NEAR(f.number("Rig/Stage", "rot.Y"), 180 * kDegree, 1e-15);

  EXPECT_EQ(stackOf(f, "Bare"), std::vector<std::string>{});
  expectMatrixNear(f.world("Bare"), identityMatrix(), "an empty stack");
}

TEST(LocatorSceneFile, LinksAndItemListNameItemsAndTransforms) {
  SceneFixture f(R"({"items": [
    {"name": "Arm", "type": "locator", "id": "arm01", "position": [1, 2, 3]},
    {"name": "Hand", "type": "locator", "transforms": [{"type": "translation", "name": "Move", "id": "mv"}]},
    {"name": "Cam", "type": "camera"}],
   "links": [{"from": "Arm/Position.pos.Z", "to": "mv.pos.X"},
             {"from": "arm01/Position.pos.Y", "to": "Cam.focalLen"},
             {"from": "Arm.worldMatrix", "to": "Hand.parentMatrix"}],
   "itemList": ["Cam", "arm01", "Hand/Move", "Cam"],
   "selection": ["Arm/Rotation"]})");
  ASSERT_TRUE(f.ok());
  EXPECT_EQ(f.number("mv", "pos.X"), 3.0);
  EXPECT_EQ(f.number("Cam", "focalLen"), 2.0);
  expectMatrixNear(f.world("Hand"), translationMatrix({4, 2, 3}), "Hand under Arm by a link");
  IVxLocatorService* service = f.sdk.LocatorService();
  ASSERT_EQ(service->ItemListCount(), 3u);
  EXPECT_EQ(service->ItemListByIndex(0), f.item("Cam"));
  EXPECT_EQ(service->ItemListByIndex(1), f.item("Arm"));
  EXPECT_EQ(service->ItemListByIndex(2), f.item("mv"));  // an item listed again keeps its first place
  EXPECT_EQ(f.sdk.SelectionByIndex("item", 0), f.item("arm01/Rotation"));
}

}  // namespace
}  // namespace vexo
