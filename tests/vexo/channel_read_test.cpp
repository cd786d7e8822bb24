#include <gtest/gtest.h>

#include <memory>

#include "engine/scene.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {
namespace {

struct ReadReleaser {
  void operator()(IVxChannelRead* read) const { read->Release(); }
};
using ReadPtr = std::unique_ptr<IVxChannelRead, ReadReleaser>;

class ChannelRead : public ::testing::Test {
 protected:
  ChannelRead() {
    const TypeRegistry& types = TypeRegistry::builtin();
    render = scene.addItem(types.find("polyRender"), "Render");
    map = scene.addItem(types.find("imageMap"), "Map");
    scene.addItem(types.find("actionclip"), "walk");
    resX = static_cast<unsigned>(types.findChannel(render->typeCode(), "resX"));
    fps = static_cast<unsigned>(types.findChannel(scene.sceneItem().typeCode(), "fps"));
    effect = static_cast<unsigned>(types.findChannel(map->typeCode(), "effect"));
  }

  ReadPtr reader(const char* action) {
    IVxChannelRead* read = nullptr;
    EXPECT_EQ(sdk.ChannelRead(action, 0.5, &read), VXR_OK);
    return ReadPtr(read);
  }

  Scene scene;
  SdkScene sdk{scene};
  Item* render;
  Item* map;
  unsigned resX, fps, effect;
};

TEST_F(ChannelRead, ActionsFallBackToSetupThenToTheInitialValue) {
  IVxItem* item = sdk.wrap(render);
  std::int32_t value = 0;
  ASSERT_EQ(reader("edit")->Integer(item, resX, &value), VXR_OK);
  EXPECT_EQ(value, 1920);

  render->setValue(resX, kSetupAction, 800);
  render->setValue(resX, "walk", 640);
  for (const char* action : {"setup", "edit", "run"}) {
    ASSERT_EQ(reader(action)->Integer(item, resX, &value), VXR_OK);
    EXPECT_EQ(value, 800) << action;
  }
  ASSERT_EQ(reader("walk")->Integer(item, resX, &value), VXR_OK);
  EXPECT_EQ(value, 640);

  render->setValue(resX, kEditAction, 1024);
  ASSERT_EQ(reader("edit")->Integer(item, resX, &value), VXR_OK);
  EXPECT_EQ(value, 1024);
  ASSERT_EQ(reader("setup")->Integer(item, resX, &value), VXR_OK);
  EXPECT_EQ(value, 800);

  ReadPtr read = reader("walk");
  EXPECT_STREQ(read->Action(), "walk");
  EXPECT_EQ(read->Time(), 0.5);
}

TEST_F(ChannelRead, ConvertsBetweenIntegerAndFloat) {
  IVxItem* sceneItem = sdk.SceneItem();
  IVxItem* item = sdk.wrap(render);
  ReadPtr read = reader("edit");

  double d = 0.0;
  ASSERT_EQ(read->Double(item, resX, &d), VXR_OK);
  EXPECT_EQ(d, 1920.0);

  std::int32_t i = 0;
  ASSERT_EQ(read->Integer(sceneItem, fps, &i), VXR_OK);
  EXPECT_EQ(i, 24);
  scene.sceneItem().setValue(fps, kEditAction, 29.97);
  ASSERT_EQ(read->Integer(sceneItem, fps, &i), VXR_OK);
  EXPECT_EQ(i, 30);
  scene.sceneItem().setValue(fps, kEditAction, -2.5);
  ASSERT_EQ(read->Integer(sceneItem, fps, &i), VXR_OK);
  EXPECT_EQ(i, -3);

  scene.sceneItem().setValue(fps, kEditAction, 3.0e10);
  i = 7;
  EXPECT_EQ(read->Integer(sceneItem, fps, &i), VXR_OUTOFBOUNDS);
  EXPECT_EQ(i, 7);
}

TEST_F(ChannelRead, TextReadsOnlyAsTextAndFailuresLeaveTheOutput) {
  IVxItem* item = sdk.wrap(map);
  ReadPtr read = reader("edit");
  const char* text = nullptr;
  ASSERT_EQ(read->Text(item, effect, &text), VXR_OK);
  EXPECT_STREQ(text, "diffColor");
  map->setValue(effect, kSetupAction, std::string("normal"));
  ASSERT_EQ(read->Text(item, effect, &text), VXR_OK);
  EXPECT_STREQ(text, "normal");

  double d = 4.0;
  std::int32_t i = 4;
  double m[16] = {4.0};
  EXPECT_EQ(read->Double(item, effect, &d), VXR_BADARG);
  EXPECT_EQ(read->Integer(item, effect, &i), VXR_BADARG);
  EXPECT_EQ(read->Matrix(item, effect, m), VXR_BADARG);
  EXPECT_EQ(read->Text(sdk.wrap(render), 0, &text), VXR_BADARG);
  EXPECT_EQ(read->Double(item, 999, &d), VXR_OUTOFBOUNDS);
  EXPECT_EQ(read->Double(nullptr, 0, &d), VXR_BADARG);
  EXPECT_EQ(d, 4.0);
  EXPECT_EQ(i, 4);
  EXPECT_EQ(m[0], 4.0);
  EXPECT_STREQ(text, "normal");
}

TEST_F(ChannelRead, MatrixChannelsReadAsMatrices) {
  TypeRegistry types({{"scene", nullptr, {}}, {"holder", nullptr, {{"xf", ValueType::Matrix, 0.0, nullptr}}}});
  Scene own(types);
  SdkScene ownSdk(own);
  Item* holder = own.addItem(types.find("holder"), "H");
  Matrix moved = identityMatrix();
  moved[12] = 3.0;
  ASSERT_TRUE(holder->setValue(0, kSetupAction, moved));
  EXPECT_FALSE(holder->setValue(0, kSetupAction, 1.0));  // a value of another type is refused

  IVxChannelRead* raw = nullptr;
  ASSERT_EQ(ownSdk.ChannelRead("edit", 0.0, &raw), VXR_OK);
  ReadPtr read(raw);
  double m[16] = {};
  ASSERT_EQ(read->Matrix(ownSdk.wrap(holder), 0, m), VXR_OK);
  EXPECT_EQ(m[12], 3.0);
  EXPECT_EQ(m[15], 1.0);
  // Items of another scene are not this reader's to read.
  EXPECT_EQ(read->Matrix(sdk.wrap(render), 0, m), VXR_BADARG);
  EXPECT_EQ(sdk.ChannelRead(nullptr, 0.0, &raw), VXR_BADARG);
}

}  // namespace
}  // namespace vexo
