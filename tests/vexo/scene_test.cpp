#include <gtest/gtest.h>

#include "engine/scene.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {
namespace {

TypeCode type(const char* name) { return TypeRegistry::builtin().find(name); }

TEST(Scene, StartsWithItsSceneItem) {
  Scene scene;
  ASSERT_EQ(scene.itemCount(), 1u);
  EXPECT_EQ(&scene.item(0), &scene.sceneItem());
  EXPECT_EQ(scene.sceneItem().type().name, "scene");
  EXPECT_EQ(scene.sceneItem().ident(), "Scene");
}

TEST(Scene, IdentsAreUniqueAndDefaultToTheName) {
  Scene scene;
  Item* a = scene.addItem(type("mesh"), "Cube");
  Item* b = scene.addItem(type("mesh"), "Cube");
  Item* c = scene.addItem(type("mesh"), "Cube");
  Item* unnamed = scene.addItem(type("camera"), "");
  EXPECT_EQ(a->ident(), "Cube");
  EXPECT_EQ(b->ident(), "Cube (2)");
  EXPECT_EQ(c->ident(), "Cube (3)");
  EXPECT_EQ(unnamed->ident(), "camera");
  EXPECT_EQ(scene.findIdent("Cube (2)"), b);

  const std::size_t count = scene.itemCount();
  EXPECT_EQ(scene.addItem(type("mesh"), "Other", "Cube"), nullptr);
  EXPECT_EQ(scene.addItem(kNoType, "Nothing"), nullptr);
  EXPECT_EQ(scene.itemCount(), count);
}

TEST(Scene, KeepsChildOrderAndFiltersByDerivedType) {
  Scene scene;
  Item* root = scene.addItem(type("groupLocator"), "Root");
  Item* mesh = scene.addItem(type("mesh"), "Mesh", "", root);
  Item* sun = scene.addItem(type("sunLight"), "Sun", "", root);
  Item* render = scene.addItem(type("polyRender"), "Render");
  ASSERT_EQ(root->children(), (std::vector<Item*>{mesh, sun}));
  EXPECT_EQ(sun->parent(), root);
  EXPECT_EQ(render->parent(), nullptr);

  EXPECT_EQ(scene.itemsOfType(type("locator")), (std::vector<Item*>{root, mesh, sun}));
  EXPECT_EQ(scene.itemsOfType(type("light")), (std::vector<Item*>{sun}));
  EXPECT_EQ(scene.itemsOfType(kNoType).size(), 14u);  // each locator brings three transform items
}

TEST(Scene, SelectionKeepsFirstSelectionOrder) {
  Scene scene;
  Item* a = scene.addItem(type("locator"), "A");
  Item* b = scene.addItem(type("locator"), "B");
  scene.select(*b);
  scene.select(*a);
  scene.select(*b);
  EXPECT_EQ(scene.selection(), (std::vector<Item*>{b, a}));
  EXPECT_TRUE(scene.selection("polygon").empty());
}

TEST(Scene, ItemReferencesResolveByIdentThenUniqueName) {
  Scene scene;
  Item* a = scene.addItem(type("locator"), "Arm", "arm01");
  Item* b = scene.addItem(type("locator"), "Leg");
  scene.addItem(type("locator"), "Leg");
  std::string problem;
  EXPECT_EQ(findItemByRef(scene, "arm01", &problem), a);
  EXPECT_EQ(findItemByRef(scene, "Arm", &problem), a);
  EXPECT_EQ(findItemByRef(scene, "Leg", &problem), b);  // "Leg" is also the first one's ident
  EXPECT_EQ(findItemByRef(scene, "Hand", &problem), nullptr);
  EXPECT_EQ(problem, "no item \"Hand\"");

  scene.addItem(type("locator"), "Foot", "f1");
  scene.addItem(type("locator"), "Foot", "f2");
  EXPECT_EQ(findItemByRef(scene, "Foot", &problem), nullptr);
  EXPECT_EQ(problem, "2 items are named \"Foot\"; name one by its id");
}

TEST(SdkScene, ItemsAreStableAndFilteredByType) {
  Scene scene;
  Item* root = scene.addItem(type("locator"), "Root");
  Item* mesh = scene.addItem(type("mesh"), "Mesh", "", root);
  scene.addItem(type("imageMap"), "Map");
  SdkScene sdk(scene);

  VxTypeCode locator = type("locator");
  ASSERT_EQ(sdk.ItemCount(locator), 2u);
  IVxItem* first = sdk.ItemByIndex(locator, 0);
  IVxItem* second = sdk.ItemByIndex(locator, 1);
  EXPECT_STREQ(first->Name(), "Root");
  EXPECT_EQ(sdk.ItemByIndex(locator, 2), nullptr);
  EXPECT_EQ(sdk.ItemCount(VX_TYPE_ANY), 10u);  // each locator brings three transform items
  EXPECT_EQ(sdk.ItemCount(12345), 0u);
  EXPECT_EQ(sdk.ItemByIndex(VX_TYPE_ANY, 0), sdk.SceneItem());

  EXPECT_EQ(second->Parent(), first);
  EXPECT_EQ(first->ChildCount(), 1u);
  EXPECT_EQ(first->ChildByIndex(0), second);
  EXPECT_EQ(first->ChildByIndex(1), nullptr);
  EXPECT_EQ(first->Parent(), nullptr);
  EXPECT_EQ(sdk.ItemByIdent("Mesh"), second);
  EXPECT_EQ(sdk.unwrap(second), mesh);
  EXPECT_EQ(second->Scene(), &sdk);

  // A view taken before an item was added must not hide it.
  scene.addItem(type("camera"), "Cam", "", root);
  EXPECT_EQ(sdk.ItemCount(locator), 3u);
  EXPECT_STREQ(sdk.ItemByIndex(locator, 2)->Name(), "Cam");
}

TEST(SdkScene, ChannelsAndSelectionThroughTheInterface) {
  Scene scene;
  Item* render = scene.addItem(type("polyRender"), "Render");
  Item* mesh = scene.addItem(type("mesh"), "Mesh");
  scene.select(*mesh);
  scene.select(*render);
  SdkScene sdk(scene);

  ASSERT_EQ(sdk.SelectionCount("item"), 2u);
  EXPECT_STREQ(sdk.SelectionByIndex("item", 0)->Name(), "Mesh");
  EXPECT_STREQ(sdk.SelectionByIndex("item", 1)->Name(), "Render");
  EXPECT_EQ(sdk.SelectionByIndex("item", 2), nullptr);

  IVxItem* item = sdk.ItemByIdent("Render");
  unsigned index = 99;
  ASSERT_EQ(item->ChannelLookup("resY", &index), VXR_OK);
  const char* name = nullptr;
  VxChannelType channelType{};
  ASSERT_EQ(item->ChannelName(index, &name), VXR_OK);
  EXPECT_STREQ(name, "resY");
  ASSERT_EQ(item->ChannelType(index, &channelType), VXR_OK);
  EXPECT_EQ(channelType, VX_CHAN_INTEGER);
  EXPECT_EQ(item->ChannelLookup("resZ", &index), VXR_NOTFOUND);
  EXPECT_EQ(item->ChannelName(item->ChannelCount(), &name), VXR_OUTOFBOUNDS);

  EXPECT_EQ(sdk.Time(), 0.0);
  EXPECT_EQ(sdk.SetTime(1.5), VXR_OK);
  EXPECT_EQ(scene.time(), 1.5);
}

}  // namespace
}  // namespace vexo
