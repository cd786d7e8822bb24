// Channel links: what the "chanLinks" view reports, values that follow their
// source, and the loops the host refuses or survives.
#include <gtest/gtest.h>

#include "scene_fixture.h"

namespace vexo {
namespace {

const char* const kTwoLocators = R"({"items": [
  {"name": "A", "type": "locator", "position": [1, 2, 3]},
  {"name": "B", "type": "locator", "position": [4, 5, 6], "rotationOrder": "ZXY"},
  {"name": "walk", "type": "actionclip"}]})";

unsigned channelIndex(IVxItem* item, const char* name) {
  unsigned index = 0;
  EXPECT_EQ(item->ChannelLookup(name, &index), VXR_OK) << name;
  return index;
}

struct Linker {
  SceneFixture& f;
  // Links by reference, as a scene file names them; false with the reason in `problem`.
  bool link(const std::string& fromRef, const char* fromChannel, const std::string& toRef, const char* toChannel,
            std::string* problem = nullptr) {
    Item* from = findItemByRef(f.scene, fromRef, nullptr);
    Item* to = findItemByRef(f.scene, toRef, nullptr);
    const int fc = f.scene.types().findChannel(from->typeCode(), fromChannel);
    const int tc = f.scene.types().findChannel(to->typeCode(), toChannel);
    EXPECT_GE(fc, 0);
    EXPECT_GE(tc, 0);
    return f.scene.addLink({from, static_cast<std::size_t>(fc), to, static_cast<std::size_t>(tc)}, problem);
  }
};

TEST(ChannelLinks, TheViewCountsAndNamesIncomingLinks) {
  SceneFixture f(kTwoLocators);
  Linker l{f};
  ASSERT_TRUE(l.link("B/Position", "pos.Y", "A/Position", "pos.X"));
  ASSERT_TRUE(l.link("B/Position", "pos.Z", "A/Position", "pos.X"));
  ASSERT_TRUE(l.link("B", "worldMatrix", "A", "parentMatrix"));

  IVxChannelLinks* links = f.sdk.LocatorService()->ChannelLinks();
  IVxItem* aPos = f.item("A/Position");
  IVxItem* bPos = f.item("B/Position");
  const unsigned posX = channelIndex(aPos, "pos.X");
  ASSERT_EQ(links->IncomingCount(aPos, posX), 2u);
  IVxItem* from = nullptr;
  unsigned fromChannel = 99;
  ASSERT_EQ(links->IncomingByIndex(aPos, posX, 1, &from, &fromChannel), VXR_OK);
  EXPECT_EQ(from, bPos);
  EXPECT_EQ(fromChannel, channelIndex(bPos, "pos.Z"));
  EXPECT_EQ(links->IncomingByIndex(aPos, posX, 2, &from, &fromChannel), VXR_OUTOFBOUNDS);
  EXPECT_EQ(links->IncomingCount(aPos, channelIndex(aPos, "pos.Y")), 0u);
  EXPECT_EQ(links->IncomingCount(bPos, channelIndex(bPos, "pos.Y")), 0u);  // the source is not driven

  IVxItem* a = f.item("A");
  EXPECT_EQ(links->IncomingCount(a, channelIndex(a, "parentMatrix")), 1u);
  EXPECT_EQ(links->IncomingCount(a, channelIndex(a, "worldMatrix")), 0u);
  EXPECT_EQ(links->IncomingCount(nullptr, 0), 0u);
}

TEST(ChannelLinks, ALinkedChannelReadsItsSourceInTheSameAction) {
  SceneFixture f(kTwoLocators);
  Linker l{f};
  ASSERT_TRUE(l.link("B/Position", "pos.Y", "A/Position", "pos.X"));
  EXPECT_EQ(f.number("A/Position", "pos.X"), 5.0);
  EXPECT_EQ(f.world("A")[12], 5.0);

  // The source changes, in one action only.
  Item* bPos = findItemByRef(f.scene, "B/Position", nullptr);
  bPos->setValue(static_cast<std::size_t>(f.scene.types().findChannel(bPos->typeCode(), "pos.Y")), "walk", 7.5);
  Matrix walk{}, edit{};
  IVxLocator* a = f.locator("A");
  ASSERT_EQ(a->WorldMatrix(f.reader("walk").get(), walk.data()), VXR_OK);
  ASSERT_EQ(a->WorldMatrix(f.reader("edit").get(), edit.data()), VXR_OK);
  EXPECT_EQ(walk[12], 7.5);
  EXPECT_EQ(edit[12], 5.0);

  // A later link into the same channel takes over; links between integer and float channels convert.
  ASSERT_TRUE(l.link("B/Position", "pos.Z", "A/Position", "pos.X"));
  EXPECT_EQ(f.number("A/Position", "pos.X"), 6.0);
  ASSERT_TRUE(l.link("B/Rotation", "order", "A/Position", "pos.Y"));
  EXPECT_EQ(f.number("A/Position", "pos.Y"), 4.0);  // ZXY
}

TEST(ChannelLinks, MatrixLinksPlaceALocator) {
  SceneFixture f(kTwoLocators);
  Linker l{f};
  ASSERT_TRUE(l.link("B", "worldMatrix", "A", "parentMatrix"));
  expectMatrixNear(f.parentWorld("A"), translationMatrix({4, 5, 6}), "A parent");
  expectMatrixNear(f.world("A"), translationMatrix({5, 7, 9}), "A world");
  ASSERT_TRUE(l.link("B", "localMatrix", "A", "worldMatrix"));
  expectMatrixNear(f.world("A"), translationMatrix({4, 5, 6}), "A world, driven");
}

TEST(ChannelLinks, LinksThatCannotWorkAreRefused) {
  SceneFixture f(kTwoLocators);
  Linker l{f};
  std::string problem;
  ASSERT_TRUE(l.link("A/Position", "pos.X", "B/Position", "pos.X"));
  EXPECT_FALSE(l.link("A/Position", "pos.X", "B/Position", "pos.X", &problem));
  EXPECT_EQ(problem, "the link exists already");
  ASSERT_TRUE(l.link("B/Position", "pos.X", "B/Position", "pos.Y"));
  EXPECT_FALSE(l.link("B/Position", "pos.Y", "A/Position", "pos.X", &problem));
  EXPECT_EQ(problem, "it would close a loop: the source already takes its value from the target");
  EXPECT_FALSE(l.link("A/Position", "pos.Z", "A/Position", "pos.Z", &problem));
  EXPECT_EQ(problem, "a channel cannot drive itself");
  EXPECT_FALSE(l.link("A", "worldMatrix", "B/Position", "pos.Z", &problem));
  EXPECT_EQ(problem, "a matrix channel cannot drive a float channel");
  EXPECT_EQ(f.scene.links().size(), 2u);
  EXPECT_EQ(f.number("B/Position", "pos.Y"), 1.0);
}

TEST(ChannelLinks, AMatrixThatNeedsItselfFailsInsteadOfRecursing) {
  // Each one's parent matrix is the other's world matrix.
  SceneFixture f(kTwoLocators);
  Linker l{f};
  ASSERT_TRUE(l.link("B", "worldMatrix", "A", "parentMatrix"));
  ASSERT_TRUE(l.link("A", "worldMatrix", "B", "parentMatrix"));
  Matrix m{};
  IVxLocator* a = f.locator("A");
  EXPECT_EQ(a->WorldMatrix(f.reader().get(), m.data()), VXR_FAILED);
  EXPECT_EQ(a->LocalMatrix(f.reader().get(), m.data()), VXR_OK);  // the stack alone still evaluates
  IVxItem* b = f.item("B");
  EXPECT_EQ(f.reader()->Matrix(b, channelIndex(b, "wposMatrix"), m.data()), VXR_FAILED);

  // A child whose world matrix drives its parent's parent matrix loops through the hierarchy.
  SceneFixture g(R"({"items": [{"name": "P", "type": "locator", "children": [{"name": "C", "type": "locator"}]}]})");
  Linker lg{g};
  ASSERT_TRUE(lg.link("C", "worldMatrix", "P", "parentMatrix"));
  EXPECT_EQ(g.locator("C")->WorldMatrix(g.reader().get(), m.data()), VXR_FAILED);
}

TEST(ItemList, KeepsItsOrderAndFirstPlaces) {
  SceneFixture f(kTwoLocators);
  IVxLocatorService* service = f.sdk.LocatorService();
  EXPECT_EQ(service->ItemListCount(), 0u);
  Item* a = findItemByRef(f.scene, "A", nullptr);
  Item* b = findItemByRef(f.scene, "B", nullptr);
  f.scene.addToItemList(*b);
  f.scene.addToItemList(*a);
  f.scene.addToItemList(*b);
  ASSERT_EQ(service->ItemListCount(), 2u);
  EXPECT_EQ(service->ItemListByIndex(0), f.item("B"));
  EXPECT_EQ(service->ItemListByIndex(1), f.item("A"));
  EXPECT_EQ(service->ItemListByIndex(2), nullptr);
}

}  // namespace
}  // namespace vexo
