// Channel links: what the "chanLinks" view reports, values that follow their
// source, and the loops the host survives. Links the host refuses are among
// the scene-file errors.
#include <gtest/gtest.h>

#include "scene_fixture.h"

namespace vexo {
namespace {

// Two locators and an action clip, joined by the scene file's `links`.
std::string twoLocators(const std::string& links) {
  return R"({"items": [{"name": "A", "type": "locator", "position": [1, 2, 3]},
    {"name": "B", "type": "locator", "position": [4, 5, 6], "rotationOrder": "ZXY"},
    {"name": "walk", "type": "actionclip"}], "links": [)" +
         links + "]}";
}

TEST(ChannelLinks, TheViewCountsAndNamesIncomingLinksAndTheLastOneDrives) {
  SceneFixture f(twoLocators(R"({"from": "B/Position.pos.Y", "to": "A/Position.pos.X"},
                                {"from": "B/Position.pos.Z", "to": "A/Position.pos.X"},
                                {"from": "B.worldMatrix", "to": "A.parentMatrix"})"));
  IVxChannelLinks* links = f.sdk.LocatorService()->ChannelLinks();
  IVxItem* aPos = f.item("A/Position");
  const unsigned posX = f.channel("A/Position", "pos.X");
  ASSERT_EQ(links->IncomingCount(aPos, posX), 2u);
  IVxItem* from = nullptr;
  unsigned fromChannel = 99;
  ASSERT_EQ(links->IncomingByIndex(aPos, posX, 1, &from, &fromChannel), VXR_OK);
  EXPECT_EQ(from, f.item("B/Position"));
  EXPECT_EQ(fromChannel, f.channel("B/Position", "pos.Z"));
  EXPECT_EQ(links->IncomingByIndex(aPos, posX, 2, &from, &fromChannel), VXR_OUTOFBOUNDS);
  EXPECT_EQ(links->IncomingCount(f.item("B/Position"), f.channel("B/Position", "pos.Y")), 0u);  // not driven
  EXPECT_EQ(links->IncomingCount(f.item("A"), f.channel("A", "parentMatrix")), 1u);
  EXPECT_EQ(links->IncomingCount(nullptr, 0), 0u);
  EXPECT_EQ(f.number("A/Position", "pos.X"), 6.0);
}

TEST(ChannelLinks, ALinkedChannelReadsItsSourceInTheSameAction) {
  SceneFixture f(twoLocators(R"({"from": "B/Position.pos.Y", "to": "A/Position.pos.X"},
                                {"from": "B/Rotation.order", "to": "A/Position.pos.Y"})"));
  EXPECT_EQ(f.number("A/Position", "pos.X"), 5.0);
  EXPECT_EQ(f.number("A/Position", "pos.Y"), 4.0);  // an integer channel drives a float one: ZXY
  // The source changes, in one action only.
  findItemByRef(f.scene, "B/Position", nullptr)->setValue(f.channel("B/Position", "pos.Y"), "walk", 7.5);
  Matrix walk{};
  ASSERT_EQ(f.locator("A")->WorldMatrix(f.reader("walk").get(), walk.data()), VXR_OK);
  EXPECT_EQ(walk[12], 7.5);
  EXPECT_EQ(f.world("A")[12], 5.0);
}

TEST(ChannelLinks, MatrixLinksPlaceALocator) {
  SceneFixture f(twoLocators(R"({"from": "B.worldMatrix", "to": "A.parentMatrix"})"));
  expectMatrixNear(f.parentWorld("A"), translationMatrix({4, 5, 6}), "A parent");
  expectMatrixNear(f.world("A"), translationMatrix({5, 7, 9}), "A world");
  SceneFixture g(twoLocators(R"({"from": "B.worldMatrix", "to": "A.parentMatrix"},
                                {"from": "B.localMatrix", "to": "A.worldMatrix"})"));
  expectMatrixNear(g.world("A"), translationMatrix({4, 5, 6}), "A world, driven");
}

TEST(ChannelLinks, AMatrixThatNeedsItselfFailsInsteadOfRecursing) {
  // Each one's parent matrix is the other's world matrix.
  SceneFixture f(twoLocators(R"({"from": "B.worldMatrix", "to": "A.parentMatrix"},
                                {"from": "A.worldMatrix", "to": "B.parentMatrix"})"));
  Matrix m{};
  EXPECT_EQ(f.locator("A")->WorldMatrix(f.reader().get(), m.data()), VXR_FAILED);
  EXPECT_EQ(f.locator("A")->LocalMatrix(f.reader().get(), m.data()), VXR_OK);  // the stack alone still evaluates
  EXPECT_EQ(f.reader()->Matrix(f.item("B"), f.channel("B", "wposMatrix"), m.data()), VXR_FAILED);

  // A child whose world matrix drives its parent's parent matrix loops through the hierarchy.
  SceneFixture g(R"({"items": [{"name": "P", "type": "locator", "children": [{"name": "C", "type": "locator"}]}],
                     "links": [{"from": "C.worldMatrix", "to": "P.parentMatrix"}]})");
  EXPECT_EQ(g.locator("C")->WorldMatrix(g.reader().get(), m.data()), VXR_FAILED);
}

}  // namespace
}  // namespace vexo
