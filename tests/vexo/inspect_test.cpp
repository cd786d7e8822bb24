// The placements `vexo inspect` shows: every item with its parent and world matrix.
#include <gtest/gtest.h>

#include "engine/inspect.h"
#include "scene_fixture.h"

namespace vexo {
namespace {

const ItemPlacement* find(const std::vector<ItemPlacement>& items, const std::string& ident) {
  for (const ItemPlacement& item : items)
    if (item.ident == ident) return &item;
  ADD_FAILURE() << "no " << ident;
  return nullptr;
}

TEST(Inspect, EveryItemWithItsParentAndWorldInTheAction) {
  SceneFixture f(R"({"items": [
      {"name": "Root", "type": "locator", "position": [10, 0, 0], "children": [
        {"name": "Team", "type": "group", "children": [{"name": "Leaf", "type": "camera", "position": [0, 0, 3]}]}]},
      {"name": "Src", "type": "locator", "position": [0, 7, 0]},
      {"name": "Held", "type": "locator", "position": [0, 0, 5]},
      {"name": "walk", "type": "actionclip"}],
    "links": [{"from": "Src.worldMatrix", "to": "Held.parentMatrix"}]})");
  findItemByRef(f.scene, "Root/Position", nullptr)->setValue(f.channel("Root/Position", "pos.X"), "walk", 20.0);
  std::vector<ItemPlacement> items;
  std::string problem;
  ASSERT_TRUE(inspectScene(f.scene, "walk", 0.0, items, problem)) << problem;
  ASSERT_EQ(items.size(), f.scene.itemCount());
  EXPECT_EQ(items[0].ident, "Scene");
  EXPECT_EQ(items[0].type, "scene");

  const ItemPlacement* leaf = find(items, "Leaf");
  ASSERT_TRUE(leaf && leaf->world);
  EXPECT_EQ(leaf->type, "camera");
  EXPECT_EQ(leaf->parentIdent, "Team");
  expectMatrixNear(*leaf->world, translationMatrix({20, 0, 3}), "Leaf");
  // A group gives the frame its children inherit.
  const ItemPlacement* team = find(items, "Team");
  ASSERT_TRUE(team && team->world);
  EXPECT_EQ(team->parentIdent, "Root");
  expectMatrixNear(*team->world, translationMatrix({20, 0, 0}), "Team");
  // A linked parent matrix moves the world; transform items have no parent.
  const ItemPlacement* held = find(items, "Held");
  ASSERT_TRUE(held && held->world);
  expectMatrixNear(*held->world, translationMatrix({0, 7, 5}), "Held");
  EXPECT_FALSE(held->parentIdent);
  EXPECT_FALSE(find(items, "Held/Position")->parentIdent);

  EXPECT_FALSE(inspectScene(f.scene, "run", 0.0, items, problem));
  EXPECT_EQ(problem, "unknown action \"run\"; actions are \"setup\", \"edit\" and the names of \"actionclip\" items");
}

TEST(Inspect, AWorldThatNeedsItselfIsLeftEmpty) {
  SceneFixture f(R"({"items": [{"name": "A", "type": "locator"}, {"name": "B", "type": "locator"}],
    "links": [{"from": "B.worldMatrix", "to": "A.parentMatrix"}, {"from": "A.worldMatrix", "to": "B.parentMatrix"}]})");
  std::vector<ItemPlacement> items;
  std::string problem;
  ASSERT_TRUE(inspectScene(f.scene, "setup", 0.0, items, problem));
  EXPECT_FALSE(find(items, "A")->world);
  ASSERT_TRUE(find(items, "Scene")->world);
  expectMatrixNear(*find(items, "Scene")->world, identityMatrix(), "Scene");
}

}  // namespace
}  // namespace vexo
