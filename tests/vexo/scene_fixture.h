// A scene read from scene-file text with its SDK view, for tests that
// evaluate locators, channels and links as the module sees them.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

#include "engine/matrix.h"
#include "engine/scene.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_locator.h"

namespace vexo {

struct ReadReleaser {
  void operator()(IVxChannelRead* read) const { read->Release(); }
};
using ReadPtr = std::unique_ptr<IVxChannelRead, ReadReleaser>;

class SceneFixture {
 public:
  explicit SceneFixture(const std::string& text) {
    std::string error;
    ok_ = readSceneText(text, "scene.json", scene, error);
    EXPECT_TRUE(ok_) << error;
  }

  bool ok() const { return ok_; }

  IVxItem* item(const std::string& ref) {
    Item* found = findItemByRef(scene, ref, nullptr);
    EXPECT_NE(found, nullptr) << ref;
    return sdk.wrap(found);
  }

  IVxLocator* locator(const std::string& ref) {
    IVxLocator* view = nullptr;
    IVxItem* it = item(ref);
    if (!it || VxFailed(sdk.LocatorService()->LocatorLookup(it, &view))) ADD_FAILURE() << ref << " is no locator";
    return view;
  }

  ReadPtr reader(const char* action = "edit", double time = 0.0) {
    IVxChannelRead* read = nullptr;
    EXPECT_EQ(sdk.ChannelRead(action, time, &read), VXR_OK);
    return ReadPtr(read);
  }

  // The world matrix of a locator in the "edit" action; all zeros when it cannot be had.
  Matrix world(const std::string& ref) { return evaluate(ref, &IVxLocator::WorldMatrix); }
  Matrix local(const std::string& ref) { return evaluate(ref, &IVxLocator::LocalMatrix); }
  Matrix parentWorld(const std::string& ref) { return evaluate(ref, &IVxLocator::ParentWorldMatrix); }

  // A channel read as a double in the "edit" action.
  double number(const std::string& ref, const char* channel) {
    IVxItem* it = item(ref);
    unsigned index = 0;
    double value = -12345.0;
    if (!it || VxFailed(it->ChannelLookup(channel, &index))) {
      ADD_FAILURE() << ref << " has no channel " << channel;
      return value;
    }
    EXPECT_EQ(reader()->Double(it, index, &value), VXR_OK) << ref << "." << channel;
    return value;
  }

  Scene scene;
  SdkScene sdk{scene};

 private:
  Matrix evaluate(const std::string& ref, VxResult (IVxLocator::*get)(IVxChannelRead*, double*)) {
    Matrix m{};
    IVxLocator* view = locator(ref);
    if (view) {
      EXPECT_EQ((view->*get)(reader().get(), m.data()), VXR_OK) << ref;
    }
    return m;
  }

  bool ok_ = false;
};

inline void expectMatrixNear(const Matrix& actual, const Matrix& expected, const std::string& what) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-12) << what << " element " << i;
}

inline void expectPointNear(const Vec3& actual, const Vec3& expected, const std::string& what) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-12) << what << " coordinate " << i;
}

}  // namespace vexo
