// Scene-file fields of locators, links and the item list.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

#include "scene_fixture.h"

namespace vexo {
namespace {

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

  // Transform items take "LOCATOR-ID/NAME" as their id.
  EXPECT_NE(f.scene.findIdent("full01/RotationPivotCompensation"), nullptr);
  EXPECT_EQ(f.number("full01/Position", "pos.Z"), 3.0);
  EXPECT_NEAR(f.number("full01/Rotation", "rot.X"), 90 * kDegree, 1e-15);
  EXPECT_NEAR(f.number("full01/Rotation", "rot.Z"), -45 * kDegree, 1e-15);
  EXPECT_EQ(f.number("full01/Rotation", "order"), 5.0);
  EXPECT_EQ(f.number("full01/RotationPre", "order"), 0.0);
  EXPECT_NEAR(f.number("full01/RotationPost", "rot.Z"), 60 * kDegree, 1e-15);
  EXPECT_EQ(f.number("full01/ScalePivotCompensation", "pos.Y"), -0.25);
  EXPECT_EQ(f.number("full01/ScalePivot", "pos.Y"), 0.25);
  EXPECT_EQ(f.number("full01/RotationPivotCompensation", "pos.X"), -0.5);
  EXPECT_EQ(f.number("full01/RotationPivotCompensation", "scl.X"), 1.0);
  EXPECT_EQ(f.number("full01/ScaleOffset", "pos.X"), 1.0);
  EXPECT_EQ(f.number("Full/Scale", "scl.Y"), 2.0);  // by the locator's name as well
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
  EXPECT_EQ(f.number("Rig/Stage", "scl.Z"), 3.0);
  IVxLocator* rig = f.locator("Rig");
  EXPECT_EQ(rig->MainTransform(VX_XFRM_SCALE), nullptr);
  EXPECT_STREQ(rig->MainTransform(VX_XFRM_ROTATION)->Name(), "Spin");

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
   "itemList": ["Cam", "arm01", "Hand/Move"],
   "selection": ["Arm/Rotation"]})");
  ASSERT_TRUE(f.ok());
  EXPECT_EQ(f.number("mv", "pos.X"), 3.0);
  EXPECT_EQ(f.number("Cam", "focalLen"), 2.0);
  expectMatrixNear(f.world("Hand"), translationMatrix({4, 2, 3}), "Hand under Arm by a link");
  IVxLocatorService* service = f.sdk.LocatorService();
  ASSERT_EQ(service->ItemListCount(), 3u);
  EXPECT_EQ(service->ItemListByIndex(0), f.item("Cam"));
  EXPECT_EQ(service->ItemListByIndex(1), f.item("Arm"));
  EXPECT_EQ(service->ItemListByIndex(2), f.item("mv"));
  EXPECT_EQ(f.sdk.SelectionByIndex("item", 0), f.item("arm01/Rotation"));
}

TEST(LocatorSceneFile, GeneratedTransformIdsAvoidIdsGivenLater) {
  SceneFixture f(R"({"items": [{"name": "A", "type": "locator"},
                               {"name": "B", "type": "locator", "id": "A/Position"}]})");
  ASSERT_TRUE(f.ok());
  EXPECT_EQ(f.scene.findIdent("A/Position")->name(), "B");
  EXPECT_EQ(f.scene.findIdent("A/Position (2)")->stackOwner(), f.scene.findIdent("A"));
}

std::string readError(const std::string& text) {
  Scene scene;
  std::string error;
  EXPECT_FALSE(readSceneText(text, "scene.json", scene, error)) << text;
  return error;
}

TEST(LocatorSceneFile, EachErrorNamesFileLineAndColumn) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"{\"items\": [\n  {\"name\": \"R\", \"type\": \"polyRender\", \"position\": [1, 2, 3]}]}",
       "scene.json:2:39: \"position\" is for locators; item type \"polyRender\" is not one"},
      {"{\"items\": [\n  {\"name\": \"L\", \"type\": \"locator\", \"position\": [1, 2]}]}",
       "scene.json:2:48: \"position\" takes an array of 3 numbers, not an array of 2"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\",\n  \"scale\": 2}]}",
       "scene.json:2:12: \"scale\" takes an array of 3 numbers, not 2"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\",\n  \"rotation\": [0, \"90\", 0]}]}",
       "scene.json:2:19: \"rotation\" element 1 is a string, not a number"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"rotationOrder\": \"XYW\"}]}",
       "scene.json:1:62: unknown rotation order \"XYW\"; expected one of \"XYZ\", \"XZY\", \"YXZ\", \"YZX\", \"ZXY\", "
       "\"ZYX\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [],\n  \"scalePivot\": [0, 0, 0]}]}",
       "scene.json:2:3: \"scalePivot\" cannot be given beside \"transforms\", which lists the whole stack"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n  {\"type\": \"rotate\", \"name\": \"R\"}]}]}",
       "scene.json:2:12: unknown transform type \"rotate\"; expected one of \"translation\", \"rotation\", \"scale\", "
       "\"transform\", \"shear\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n"
       "  {\"type\": \"transform\", \"name\": \"T\", \"values\": [0, 0, 0]}]}]}",
       "scene.json:2:38: unknown key \"values\" in a \"transform\" transform; expected one of \"type\", \"name\", \"id\", "
       "\"channels\", \"actions\", \"position\", \"rotation\", \"order\", \"scale\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n"
       "  {\"type\": \"rotation\", \"name\": \"A\", \"main\": true},\n  {\"type\": \"rotation\", \"name\": \"B\", \"main\": true}]}]}",
       "scene.json:3:45: the locator has a main \"rotation\" already"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [{\"type\": \"scale\", \"name\": \"S\", \"main\": 1}]}]}",
       "scene.json:1:99: \"main\" takes a boolean, not 1"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n  {\"type\": \"shear\"}]}]}",
       "scene.json:2:3: a \"shear\" transform has no \"name\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n"
       "  {\"type\": \"scale\", \"name\": \"S\", \"channels\": {\"pos.X\": 1}}]}]}",
       "scene.json:2:47: unknown channel \"pos.X\" for item type \"scale\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"channels\": {\"worldMatrix\": 1}}]}",
       "scene.json:1:58: channel \"worldMatrix\" is computed from the transforms and cannot be set"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"id\": \"x\", \"transforms\": [\n"
       "  {\"type\": \"scale\", \"name\": \"S\", \"id\": \"x\"}]}]}",
       "scene.json:2:40: duplicate id \"x\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"Nobody.pos.X\", \"to\": \"A.visible\"}]}",
       "scene.json:2:21: no item for \"Nobody.pos.X\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A.pos.X\"}]}",
       "scene.json:2:40: item \"A\" has no channel \"pos.X\"; its transform item \"A/Position\" has"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A\"}]}",
       "scene.json:2:40: \"to\" takes \"ITEM.CHANNEL\", not \"A\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\"}]}",
       "scene.json:2:12: link has no \"to\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A.visible\"}]}",
       "scene.json:2:12: cannot link \"A.visible\" to \"A.visible\": a channel cannot drive itself"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"too\": \"A.visible\"}]}",
       "scene.json:2:34: unknown key \"too\" in a link; expected one of \"from\", \"to\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"itemList\": [\"A\", \"Q\"]}",
       "scene.json:2:20: cannot list: no item \"Q\""},
      {"{\"itemList\": \"A\"}", "scene.json:1:14: \"itemList\" takes an array, not a string"},
      // A misspelt type is named as such, not as keys the type would not take.
      {"{\"items\": [{\"name\": \"L\", \"type\": \"lokator\", \"position\": [1, 2, 3]}]}",
       "scene.json:1:34: unknown item type \"lokator\""},
  };
  for (const auto& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
}

TEST(LocatorSceneFile, TheHierarchyExampleReads) {
  std::ifstream in(EXAMPLES_DIR "/hierarchy.json");
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  ASSERT_FALSE(text.empty());
  SceneFixture f(text);
  ASSERT_TRUE(f.ok());
  EXPECT_GT(f.sdk.SelectionCount("item"), 0u);
  EXPECT_GT(f.sdk.LocatorService()->ItemListCount(), 0u);
}

}  // namespace
}  // namespace vexo
