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
  expectMatrixNear(f.world("A"), translationMatrix({5, 7, 9}), "A world");
  // The channel reads its source; the frame A's node hangs under stays A's hierarchy parent's, none here.
  Matrix channel{};
  ASSERT_EQ(f.reader()->Matrix(f.item("A"), f.channel("A", "parentMatrix"), channel.data()), VXR_OK);
  expectMatrixNear(channel, translationMatrix({4, 5, 6}), "A parentMatrix channel");
  expectMatrixNear(f.parentWorld("A"), identityMatrix(), "A parent world");
  SceneFixture g(twoLocators(R"({"from": "B.worldMatrix", "to": "A.parentMatrix"},
                                {"from": "B.localMatrix", "to": "A.worldMatrix"})"));
  expectMatrixNear(g.world("A"), translationMatrix({4, 5, 6}), "A world, driven");
}

TEST(ChannelLinks, ALinkedParentMatrixUnderAnotherLocatorKeepsThatLocatorAsTheNodeFrame) {
  // The world is local x the linked channel; the module places the node as world x inverse(parent world).
  SceneFixture f(R"({"items": [
      {"name": "P", "type": "locator", "position": [10, 0, 0], "children": [
        {"name": "C", "type": "locator", "position": [0, 0, 5]}]},
      {"name": "S", "type": "locator", "position": [0, 7, 0]}],
    "links": [{"from": "S.worldMatrix", "to": "C.parentMatrix"}]})");
  expectMatrixNear(f.world("C"), translationMatrix({0, 7, 5}), "C world");
  expectMatrixNear(f.parentWorld("C"), translationMatrix({10, 0, 0}), "C parent world");
}

TEST(ChannelLinks, AChainOfLocatorsPlacedByEachOtherEvaluatesThroughout) {
  // Each locator's parent matrix is the world matrix of the one before: the last sits at the sum of all.
  // Listed last first, so that reading the last one needs the whole chain at once.
  constexpr int kCount = 12000;
  std::string text = R"({"items": [)";
  std::string links;
  for (int i = 0; i < kCount; ++i) {
    text += std::string(i ? "," : "") + R"({"name": "L)" + std::to_string(kCount - 1 - i) +
            R"(", "type": "locator", "position": [1, 0, 0]})";
    if (i) links += std::string(i > 1 ? "," : "") + R"({"from": "L)" + std::to_string(i - 1) + R"(.worldMatrix", "to": "L)" +
                    std::to_string(i) + R"(.parentMatrix"})";
  }
  SceneFixture f(text + R"(], "links": [)" + links + "]}");
  EXPECT_EQ(f.world("L" + std::to_string(kCount - 1))[12], double(kCount));
  EXPECT_EQ(f.world("L1000")[12], 1001.0);
  // A value changed afterwards is seen by the next read.
  Item* first = findItemByRef(f.scene, "L0/Position", nullptr);
  first->setValue(f.channel("L0/Position", "pos.X"), "edit", 2.0);
  EXPECT_EQ(f.world("L" + std::to_string(kCount - 1))[12], double(kCount + 1));
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
