// Keys, per-action fallback, actors and actions, IK chains and the command service.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "scene_fixture.h"
#include "vexo/vx_anim.h"
#include "vexo/vx_command.h"

namespace vexo {
namespace {

double readAt(SceneFixture& f, const std::string& ref, const char* name, const char* action, double time) {
  IVxChannelRead* read = nullptr;
  EXPECT_EQ(f.sdk.ChannelRead(action, time, &read), VXR_OK);
  ReadPtr owned(read);
  double value = -12345.0;
  EXPECT_EQ(read->Double(f.item(ref), f.channel(ref, name), &value), VXR_OK);
  return value;
}

Matrix worldAt(SceneFixture& f, const std::string& ref, const char* action, double time) {
  IVxChannelRead* read = nullptr;
  EXPECT_EQ(f.sdk.ChannelRead(action, time, &read), VXR_OK);
  ReadPtr owned(read);
  Matrix m{};
  EXPECT_EQ(f.locator(ref)->WorldMatrix(read, m.data()), VXR_OK);
  return m;
}

TEST(Keys, LinearSteppedAndHeldBeyondTheEnds) {
  SceneFixture f(R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {
      "Position.pos.X": [[1, 0], [3, 10, "stepped"], [4, 20]],
      "visible": [[0, 0], [2, 1]] }}}]})");
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", -5), 0.0);   // before the first key
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", 1.5), 2.5);  // linear
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", 3.0), 10.0);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", 3.9), 10.0);  // stepped holds
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", 9.0), 20.0);  // after the last key
  // An integer channel holds each key until the next, whatever the interpolation.
  EXPECT_DOUBLE_EQ(readAt(f, "L", "visible", "setup", 1.9), 0.0);
  EXPECT_DOUBLE_EQ(readAt(f, "L", "visible", "setup", 2.0), 1.0);
}

TEST(Keys, ActionFallbackAndActiveClipUnderEdit) {
  SceneFixture f(R"({"items": [
      {"name": "Hero", "type": "actor", "members": ["L"], "children": [
        {"name": "walk", "type": "actionclip"}, {"name": "run", "type": "actionclip", "channels": {"active": 1}}]},
      {"name": "L", "type": "locator", "keys": {
        "setup": {"Position.pos.Y": [[0, 1], [1, 2]]},
        "walk": {"Position.pos.X": [[0, 0], [1, 4]]},
        "run": {"Position.pos.X": [[0, 0], [1, 8]]} },
       "transforms": [{"type": "translation", "name": "Position", "main": true, "values": [7, 0, 0],
                       "actions": {"walk": {"pos.Z": 3}}}]}]})");
  // Own keys, else setup keys, else setup value.
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "walk", 0.5), 2.0);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.Y", "walk", 0.5), 1.5);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.Z", "walk", 0.5), 3.0);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "setup", 0.5), 7.0);
  // "edit" reads through the active clip, and follows a switch of it.
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "edit", 0.5), 4.0);  // run: 8 at 1 s
  IVxActor* actor = nullptr;
  ASSERT_EQ(f.sdk.AnimService()->ActorLookup(f.item("Hero"), &actor), VXR_OK);
  ASSERT_EQ(actor->SetActionActive(f.item("walk"), true), VXR_OK);
  EXPECT_EQ(actor->ActionIsActive(f.item("run")), VXR_FALSE);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "edit", 0.5), 2.0);
  ASSERT_EQ(actor->SetActionActive(f.item("walk"), false), VXR_OK);
  EXPECT_DOUBLE_EQ(readAt(f, "L/Position", "pos.X", "edit", 0.5), 7.0);
}

TEST(Keys, KeyTimesAndAnimatedFollowTheRead) {
  SceneFixture f(R"({"items": [{"name": "L", "type": "locator", "keys": {
      "setup": {"Position.pos.X": [[0, 0], [0.5, 1], [2, 0]]} },
      "actions": {"edit": {"visible": 1}}},
      {"name": "D", "type": "locator"}],
    "links": [{"from": "L/Position.pos.X", "to": "D/Position.pos.Y"}]})");
  IVxAnimService* anim = f.sdk.AnimService();
  IVxItem* pos = f.item("L/Position");
  const unsigned x = f.channel("L/Position", "pos.X");
  ASSERT_EQ(anim->KeyCount("edit", pos, x), 3u);
  double t = -1;
  EXPECT_EQ(anim->KeyTime("edit", pos, x, 1, &t), VXR_OK);
  EXPECT_DOUBLE_EQ(t, 0.5);
  EXPECT_EQ(anim->KeyTime("edit", pos, x, 3, &t), VXR_OUTOFBOUNDS);
  EXPECT_EQ(anim->IsAnimated("edit", pos, x), VXR_OK);
  EXPECT_EQ(anim->IsAnimated("edit", pos, f.channel("L/Position", "pos.Z")), VXR_FALSE);
  EXPECT_EQ(anim->IsAnimated("edit", f.item("D/Position"), f.channel("D/Position", "pos.Y")), VXR_OK);  // linked
  EXPECT_EQ(anim->IsAnimated("edit", f.item("L"), f.channel("L", "visible")), VXR_FALSE);
}

TEST(Keys, WorldMatricesAtTimeThroughAnimatedParents) {
  SceneFixture f(R"({"items": [{"name": "Root", "type": "locator",
      "keys": {"setup": {"Position.pos.X": [[0, 0], [1, 10]], "Rotation.rot.Z": [[0, 0], [1, 1.5707963267948966]]}},
      "children": [{"name": "Mid", "type": "locator", "position": [1, 0, 0],
        "children": [{"name": "Tip", "type": "locator", "keys": {"setup": {"Position.pos.Y": [[0, 0], [1, 2]]}}}]}]}]})");
  // At t = 1 Root is turned 90 degrees about Z and moved to x 10: Tip at (0, 2) in Mid,
  // (1, 2) in Root, turned to (-2, 1), moved to (8, 1).
  const Matrix m1 = worldAt(f, "Tip", "edit", 1.0);
  EXPECT_NEAR(m1[12], 8.0, 1e-12);
  EXPECT_NEAR(m1[13], 1.0, 1e-12);
  // The scene time moves; a reader made at the new time sees it, the same evaluation is not reused stale.
  ASSERT_EQ(f.sdk.SetTime(0.5), VXR_OK);
  const Matrix half = worldAt(f, "Tip", "edit", f.sdk.Time());
  const double a = 0.7853981633974483;  // 45 degrees
  EXPECT_NEAR(half[12], 5.0 + std::cos(a) * 1 - std::sin(a) * 1, 1e-12);
  EXPECT_NEAR(half[13], std::sin(a) * 1 + std::cos(a) * 1, 1e-12);
  const Matrix m0 = worldAt(f, "Tip", "edit", 0.0);
  EXPECT_NEAR(m0[12], 1.0, 1e-12);
  EXPECT_NEAR(m0[13], 0.0, 1e-12);
}

TEST(Actors, ItemsChannelsActionsGroupsAndIK) {
  SceneFixture f(R"({"scene": {"currentGroups": ["B"]}, "items": [
      {"name": "A", "type": "actor", "members": ["Hip", "Knee"], "children": [
        {"name": "idle", "type": "actionclip"}, {"name": "kick", "type": "actionclip"}]},
      {"name": "B", "type": "actor"},
      {"name": "Hip", "type": "locator", "keys": {"kick": {"Rotation.rot.X": [[0, 0], [1, 1]]}},
       "children": [{"name": "Knee", "type": "locator", "keys": {"idle": {"visible": [[0, 1]]}}}]},
      {"name": "Leg", "type": "ikFullBody", "joints": ["Hip", "Knee"]}]})");
  IVxAnimService* anim = f.sdk.AnimService();
  IVxActor* actor = nullptr;
  ASSERT_EQ(anim->ActorLookup(f.item("A"), &actor), VXR_OK);
  EXPECT_EQ(anim->ActorLookup(f.item("Hip"), &actor), VXR_NOTFOUND);
  ASSERT_EQ(anim->ActorLookup(f.item("A"), &actor), VXR_OK);
  ASSERT_EQ(actor->ItemCount(), 2u);
  EXPECT_EQ(actor->ItemByIndex(1), f.item("Knee"));
  ASSERT_EQ(actor->ChannelCount(), 2u);
  IVxItem* item = nullptr;
  unsigned channel = 0;
  ASSERT_EQ(actor->ChannelByIndex(0, &item, &channel), VXR_OK);
  EXPECT_EQ(item, f.item("Hip/Rotation"));
  EXPECT_EQ(channel, f.channel("Hip/Rotation", "rot.X"));
  ASSERT_EQ(actor->ChannelByIndex(1, &item, &channel), VXR_OK);
  EXPECT_EQ(item, f.item("Knee"));
  ASSERT_EQ(actor->ActionCount(), 2u);
  EXPECT_EQ(actor->ActionByIndex(1), f.item("kick"));
  EXPECT_EQ(actor->ActionIsActive(f.item("kick")), VXR_FALSE);
  EXPECT_EQ(actor->SetActionActive(f.item("Hip"), true), VXR_BADARG);  // not one of its actions
  ASSERT_EQ(actor->SetActionActive(f.item("kick"), true), VXR_OK);
  ASSERT_EQ(actor->SetActionActive(f.item("idle"), true), VXR_OK);
  EXPECT_EQ(actor->ActionIsActive(f.item("kick")), VXR_FALSE);  // one active at most
  EXPECT_EQ(actor->ActionIsActive(f.item("idle")), VXR_OK);

  ASSERT_EQ(anim->CurrentGroupCount(), 1u);
  EXPECT_EQ(anim->CurrentGroupByIndex(0), f.item("B"));
  ASSERT_EQ(anim->IKJointCount(f.item("Leg")), 2u);
  EXPECT_EQ(anim->IKJointByIndex(f.item("Leg"), 0), f.item("Hip"));
  EXPECT_EQ(anim->IKJointCount(f.item("Hip")), 0u);

  SceneFixture all(R"({"items": [{"name": "A", "type": "actor"}, {"name": "B", "type": "actor"}]})");
  EXPECT_EQ(all.sdk.AnimService()->CurrentGroupCount(), 2u);  // every actor when the file names none
}

struct CommandReleaser {
  void operator()(IVxCommand* c) const { c->Release(); }
};

TEST(Commands, ExportTagsGivesTheClipsTagOrSaysWhyNot) {
  SceneFixture f(R"({"items": [{"name": "walk", "type": "actionclip", "channels": {"exportTag": "Hero|"}},
      {"name": "L", "type": "locator"}]})");
  IVxCommandService* service = f.sdk.CommandService();
  IVxCommand* raw = nullptr;
  EXPECT_EQ(service->CreateCommand("item.exportTag", &raw), VXR_NOTFOUND);
  ASSERT_EQ(service->CreateCommand("item.exportTags", &raw), VXR_OK);
  std::unique_ptr<IVxCommand, CommandReleaser> cmd(raw);
  unsigned item = 0, type = 0, tagType = 0, tag = 0, none = 0;
  ASSERT_EQ(cmd->ArgLookup("item", &item), VXR_OK);
  ASSERT_EQ(cmd->ArgLookup("itemType", &type), VXR_OK);
  ASSERT_EQ(cmd->ArgLookup("tagType", &tagType), VXR_OK);
  ASSERT_EQ(cmd->ArgLookup("tag", &tag), VXR_OK);
  EXPECT_EQ(cmd->ArgLookup("tags", &none), VXR_NOTFOUND);
  EXPECT_EQ(cmd->SetArgText(item, "walk"), VXR_BADARG);  // an item argument
  EXPECT_EQ(cmd->Execute(), VXR_FAILED);
  EXPECT_STREQ(cmd->Message(), "the argument \"item\" names no item");

  ASSERT_EQ(cmd->SetArgItem(item, f.item("walk")), VXR_OK);
  ASSERT_EQ(cmd->SetArgText(type, "actionclip"), VXR_OK);
  ASSERT_EQ(cmd->SetArgInteger(tagType, 0), VXR_OK);
  ASSERT_EQ(cmd->SetArgText(tag, ""), VXR_OK);
  ASSERT_EQ(cmd->Execute(), VXR_OK);
  const char* text = nullptr;
  ASSERT_EQ(cmd->ArgText(tag, &text), VXR_OK);
  EXPECT_STREQ(text, "Hero|");
  EXPECT_STREQ(cmd->Message(), "");

  ASSERT_EQ(cmd->SetArgInteger(tagType, 2), VXR_OK);
  EXPECT_EQ(cmd->Execute(), VXR_FAILED);
  EXPECT_STREQ(cmd->Message(), "unknown tag type 2; tag type 0 is the name prefix");
  ASSERT_EQ(cmd->SetArgInteger(tagType, 0), VXR_OK);
  ASSERT_EQ(cmd->SetArgItem(item, f.item("L")), VXR_OK);
  EXPECT_EQ(cmd->Execute(), VXR_FAILED);
  EXPECT_STREQ(cmd->Message(), "item \"L\" is of type \"locator\", not \"actionclip\"");
}

TEST(AnimationFile, RefusalsNameFileLineAndColumn) {
  struct Case {
    const char* text;
    const char* message;
  };
  const Case cases[] = {
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"Position.pos.X": [[1, 0], [0, 1]]}}}]})",
       "scene.json:1:92: key time 0 comes after a later one; write keys in time order"},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"Position.pos.X": [[1, 0], [1, 1]]}}}]})",
       "scene.json:1:92: key time 1 is given twice"},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"visible": [[0, 0.5]]}}}]})",
       "scene.json:1:80: channel \"visible\" takes a 32-bit integer, not 0.5"},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"Position.pos.W": [[0, 0]]}}}]})",
       "scene.json:1:64: transform item \"L/Position\" of type \"translation\" has no channel \"pos.W\""},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"Pos.pos.X": [[0, 0]]}}}]})",
       "scene.json:1:64: unknown channel \"Pos.pos.X\" for item type \"locator\", nor a \"TRANSFORM.CHANNEL\" of its transform stack"},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"run": {"visible": [[0, 0]]}}}]})",
       "scene.json:1:54: unknown action \"run\"; actions are \"edit\" and the names of \"actionclip\" items"},
      {R"({"items": [{"name": "L", "type": "locator", "keys": {"setup": {"visible": [[0, 0, "cubic"]]}}}]})",
       "scene.json:1:83: a key's interpolation is \"linear\" or \"stepped\", not \"cubic\""},
      {R"({"items": [{"name": "A", "type": "actor", "members": ["Nobody"]}]})",
       "scene.json:1:55: an actor's member: no item \"Nobody\""},
      {R"({"items": [{"name": "A", "type": "actor", "children": [
  {"name": "a", "type": "actionclip", "channels": {"active": 1}},
  {"name": "b", "type": "actionclip", "channels": {"active": 1}}]}]})",
       "scene.json:1:12: actor \"A\" has two active actions, \"a\" and \"b\"; at most one may be active"},
      {R"({"scene": {"currentGroups": ["L"]}, "items": [{"name": "L", "type": "locator"}]})",
       "scene.json:1:30: \"L\" is a \"locator\"; \"currentGroups\" lists \"actor\" items"},
  };
  for (const Case& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
}

}  // namespace
}  // namespace vexo

namespace vexo {
namespace {

TEST(Keys, CurvesRefuseDisorderAndNonFiniteNumbersAndKeepTheirKeys) {
  KeyCurve curve;
  std::string problem;
  ASSERT_TRUE(curve.assign({{0, 1, Interpolation::Linear}, {2, 3, Interpolation::Linear}}, &problem));
  EXPECT_FALSE(curve.assign({{0, 1, Interpolation::Linear}, {0, 2, Interpolation::Linear}}, &problem));
  EXPECT_EQ(problem, "key 1 repeats the time of the key before it");
  EXPECT_FALSE(curve.assign({{0, std::nan(""), Interpolation::Linear}}, &problem));
  EXPECT_EQ(problem, "key 0 is not a finite number");
  ASSERT_EQ(curve.size(), 2u);  // the refused keys left it as it was
  EXPECT_DOUBLE_EQ(curve.evaluate(1.0), 2.0);
  EXPECT_DOUBLE_EQ(KeyCurve().evaluate(1.0), 0.0);
}

TEST(Keys, ReadsFollowKeysChangedBetweenSamplesAndLinksFromKeyedChannels) {
  SceneFixture f(R"({"items": [
      {"name": "A", "type": "locator", "keys": {"setup": {"Position.pos.X": [[0, 0], [1, 10]]}}},
      {"name": "B", "type": "locator"}],
    "links": [{"from": "A/Position.pos.X", "to": "B/Position.pos.Y"}]})");
  EXPECT_NEAR(worldAt(f, "B", "edit", 0.25)[13], 2.5, 1e-12);  // B follows A's keys through the link
  EXPECT_NEAR(worldAt(f, "A", "edit", 0.5)[12], 5.0, 1e-12);
  Item* position = findItemByRef(f.scene, "A/Position", nullptr);
  KeyCurve flat;
  ASSERT_TRUE(flat.assign({{0, 7, Interpolation::Linear}}, nullptr));
  ASSERT_TRUE(position->setKeys(0, kSetupAction, flat));
  // The same action and time again: the evaluation kept from the last read must see the new keys.
  EXPECT_NEAR(worldAt(f, "A", "edit", 0.5)[12], 7.0, 1e-12);
  EXPECT_NEAR(worldAt(f, "B", "edit", 0.5)[13], 7.0, 1e-12);
  ASSERT_TRUE(position->setKeys(0, kSetupAction, KeyCurve()));  // no keys: the value again
  EXPECT_NEAR(worldAt(f, "A", "edit", 0.5)[12], 0.0, 1e-12);
}

TEST(Commands, FailuresLeaveTheTagAndSayWhy) {
  SceneFixture f(R"({"items": [{"name": "walk", "type": "actionclip"}, {"name": "L", "type": "locator"}]})");
  IVxCommand* raw = nullptr;
  ASSERT_EQ(f.sdk.CommandService()->CreateCommand("item.exportTags", &raw), VXR_OK);
  std::unique_ptr<IVxCommand, CommandReleaser> cmd(raw);
  const char* text = nullptr;
  EXPECT_EQ(cmd->ArgText(3, &text), VXR_FALSE);  // nothing set yet
  EXPECT_STREQ(text, "");
  ASSERT_EQ(cmd->SetArgText(3, "keep"), VXR_OK);
  ASSERT_EQ(cmd->SetArgItem(0, f.item("L")), VXR_OK);
  EXPECT_EQ(cmd->Execute(), VXR_FAILED);
  EXPECT_STREQ(cmd->Message(), "items of type \"locator\" have no export tags; \"actionclip\" items do");
  ASSERT_EQ(cmd->SetArgText(1, "clip"), VXR_OK);
  EXPECT_EQ(cmd->Execute(), VXR_FAILED);
  EXPECT_STREQ(cmd->Message(), "unknown item type \"clip\"");
  ASSERT_EQ(cmd->ArgText(3, &text), VXR_OK);
  EXPECT_STREQ(text, "keep");
  ASSERT_EQ(cmd->SetArgItem(0, f.item("walk")), VXR_OK);
  ASSERT_EQ(cmd->SetArgText(1, "actionclip"), VXR_OK);
  ASSERT_EQ(cmd->Execute(), VXR_OK);  // an action clip without a tag gives an empty one
  ASSERT_EQ(cmd->ArgText(3, &text), VXR_OK);
  EXPECT_STREQ(text, "");
  ASSERT_EQ(cmd->ArgText(0, &text), VXR_OK);
  EXPECT_STREQ(text, "walk");
  EXPECT_EQ(cmd->SetArgInteger(9, 0), VXR_OUTOFBOUNDS);
}

}  // namespace
}  // namespace vexo
