// Item types, and the scene's items and channel values as the module reads them.
#include <gtest/gtest.h>

#include "scene_fixture.h"
#include "sdk_impl/sdk_scene_service.h"

namespace vexo {
namespace {

TypeCode type(const char* name) { return TypeRegistry::builtin().find(name); }

TEST(ItemTypes, EveryTypeTheModuleLooksUpTestsByDerivation) {
  SdkSceneService service(TypeRegistry::builtin());
  auto code = [&](const char* name) {
    VxTypeCode found = -5;
    EXPECT_EQ(service.LookupType(name, &found), VXR_OK) << name;
    return found;
  };
  for (const char* name : {"scene", "locator", "groupLocator", "camera", "light", "sunLight", "pointLight",
                           "spotLight", "areaLight", "lightMaterial", "mesh", "meshInst", "triSurf", "morphDeform",
                           "txtrLocator", "polyRender", "mask", "advancedMaterial", "imageMap", "deformGroup",
                           "scale", "rotation", "translation", "transform", "shear", "ikFullBody", "actionclip",
                           "group", "unityShader", "unrealShader", "replicator", "glTFShader", "actor"}) {
    const char* back = nullptr;
    ASSERT_EQ(service.TypeName(code(name), &back), VXR_OK);
    EXPECT_STREQ(back, name);
  }
  const struct {
    const char *type, *base;
    bool is;
  } cases[] = {
      {"groupLocator", "locator", true}, {"camera", "locator", true},     {"meshInst", "locator", true},
      {"triSurf", "locator", true},      {"txtrLocator", "locator", true}, {"replicator", "locator", true},
      {"areaLight", "locator", true},    {"sunLight", "light", true},     {"spotLight", "light", true},
      {"pointLight", "light", true},     {"actor", "group", true},        {"mesh", "mesh", true},
      {"locator", "mesh", false},        {"lightMaterial", "light", false}, {"mesh", "light", false},
      {"scene", "locator", false},       {"ikFullBody", "locator", false}, {"group", "actor", false},
      {"scale", "transform", false},     {"transform", "rotation", false}, {"translation", "locator", false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(service.TestType(code(c.type), code(c.base)), c.is ? VXR_OK : VXR_FALSE) << c.type << " " << c.base;
  EXPECT_EQ(service.TestType(code("mesh"), VX_TYPE_ANY), VXR_OK);
  EXPECT_TRUE(VxFailed(service.TestType(9999, code("locator"))));
  const char* name = nullptr;
  EXPECT_TRUE(VxFailed(service.TypeName(-3, &name)));
  VxTypeCode untouched = 77;
  EXPECT_EQ(service.LookupType("lokator", &untouched), VXR_NOTFOUND);
  EXPECT_EQ(untouched, 77);
}

TEST(SdkScene, ItemsByDerivedTypeInSceneOrderAndTheirChannels) {
  SceneFixture f(R"({"items": [{"name": "Root", "type": "groupLocator", "children": [
    {"name": "Mesh", "type": "mesh"}, {"name": "Sun", "type": "sunLight"}]}, {"name": "Render", "type": "polyRender"}]})");
  const VxTypeCode locator = type("locator");
  ASSERT_EQ(f.sdk.ItemCount(locator), 3u);
  EXPECT_STREQ(f.sdk.ItemByIndex(locator, 2)->Name(), "Sun");
  EXPECT_EQ(f.sdk.ItemByIndex(locator, 3), nullptr);
  EXPECT_EQ(f.sdk.ItemCount(type("light")), 1u);
  EXPECT_EQ(f.sdk.ItemCount(VX_TYPE_ANY), 14u);  // each locator brings three transform items
  EXPECT_EQ(f.sdk.ItemCount(12345), 0u);
  EXPECT_EQ(f.sdk.ItemByIndex(VX_TYPE_ANY, 0), f.sdk.SceneItem());
  // A view taken before an item was added must not hide it.
  f.scene.addItem(type("camera"), "Cam", "", findItemByRef(f.scene, "Root", nullptr));
  EXPECT_STREQ(f.sdk.ItemByIndex(locator, 3)->Name(), "Cam");

  IVxItem* render = f.item("Render");
  unsigned index = 99;
  const char* name = nullptr;
  ASSERT_EQ(render->ChannelLookup("resY", &index), VXR_OK);
  ASSERT_EQ(render->ChannelName(index, &name), VXR_OK);
  EXPECT_STREQ(name, "resY");
  EXPECT_EQ(render->ChannelLookup("resZ", &index), VXR_NOTFOUND);
  EXPECT_EQ(f.sdk.SetTime(1.5), VXR_OK);
  EXPECT_EQ(f.scene.time(), 1.5);
}

const char* const kScene = R"({
  "scene": {"channels": {"fps": 29.97}},
  "items": [{"name": "Render", "type": "polyRender", "channels": {"resX": 800},
             "actions": {"edit": {"resY": 600}, "walk": {"resX": 640}}},
            {"name": "Map", "type": "imageMap", "channels": {"effect": "normal"}},
            {"name": "walk", "type": "actionclip"}]})";

TEST(ChannelRead, ActionsFallBackToSetupThenToTheInitialValue) {
  SceneFixture f(kScene);
  const struct {
    const char* action;
    double resX, resY;
  } cases[] = {{"setup", 800, 1080}, {"edit", 800, 600}, {"walk", 640, 1080}, {"run", 800, 1080}};
  for (const auto& c : cases) {
    EXPECT_EQ(f.number("Render", "resX", c.action), c.resX) << c.action;
    EXPECT_EQ(f.number("Render", "resY", c.action), c.resY) << c.action;
  }
}

TEST(ChannelRead, NumbersConvertAndFailuresLeaveTheOutput) {
  SceneFixture f(kScene);
  IVxItem* sceneItem = f.sdk.SceneItem();
  IVxItem* map = f.item("Map");
  const unsigned fps = f.channel("Scene", "fps"), effect = f.channel("Map", "effect");
  ReadPtr read = f.reader();
  std::int32_t i = 0;
  ASSERT_EQ(read->Integer(sceneItem, fps, &i), VXR_OK);
  EXPECT_EQ(i, 30);
  f.scene.sceneItem().setValue(fps, kEditAction, -2.5);
  ASSERT_EQ(read->Integer(sceneItem, fps, &i), VXR_OK);
  EXPECT_EQ(i, -3);
  f.scene.sceneItem().setValue(fps, kEditAction, 3.0e10);
  EXPECT_EQ(read->Integer(sceneItem, fps, &i), VXR_OUTOFBOUNDS);
  EXPECT_EQ(i, -3);

  const char* text = nullptr;
  ASSERT_EQ(read->Text(map, effect, &text), VXR_OK);
  EXPECT_STREQ(text, "normal");
  double d = 4.0, m[16] = {4.0};
  EXPECT_EQ(read->Double(map, effect, &d), VXR_BADARG);
  EXPECT_EQ(read->Integer(map, effect, &i), VXR_BADARG);
  EXPECT_EQ(read->Matrix(map, effect, m), VXR_BADARG);
  EXPECT_EQ(read->Text(f.item("Render"), 0, &text), VXR_BADARG);
  EXPECT_EQ(read->Double(map, 999, &d), VXR_OUTOFBOUNDS);
  EXPECT_EQ(read->Double(nullptr, 0, &d), VXR_BADARG);
  EXPECT_EQ(d, 4.0);
  EXPECT_EQ(i, -3);
  EXPECT_EQ(m[0], 4.0);
  EXPECT_STREQ(text, "normal");

  // Items of another scene are not this reader's to read.
  Scene other;
  SdkScene otherSdk(other);
  EXPECT_EQ(read->Double(otherSdk.SceneItem(), fps, &d), VXR_BADARG);
  IVxChannelRead* raw = nullptr;
  EXPECT_EQ(f.sdk.ChannelRead(nullptr, 0.0, &raw), VXR_BADARG);
}

}  // namespace
}  // namespace vexo
