// A scene read from scene-file text with its SDK view, for tests that
// evaluate locators, channels and links as the module sees them.
#pragma once

#include <gtest/gtest.h>

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

// The message reading a broken scene text gives.
inline std::string readError(const std::string& text) {
  Scene scene;
  std::string error;
  EXPECT_FALSE(readSceneText(text, "scene.json", scene, error)) << text;
  return error;
}

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

  unsigned channel(const std::string& ref, const char* name) {
    unsigned index = 0;
    IVxItem* it = item(ref);
    if (!it || VxFailed(it->ChannelLookup(name, &index))) ADD_FAILURE() << ref << " has no channel " << name;
    return index;
  }

  ReadPtr reader(const char* action = "edit", double time = 0.0) {
    IVxChannelRead* read = nullptr;
    EXPECT_EQ(sdk.ChannelRead(action, time, &read), VXR_OK);
    return ReadPtr(read);
  }

  // Matrices of a locator in the "edit" action; all zeros when they cannot be had.
  Matrix world(const std::string& ref) { return evaluate(ref, &IVxLocator::WorldMatrix); }
  Matrix local(const std::string& ref) { return evaluate(ref, &IVxLocator::LocalMatrix); }
  Matrix parentWorld(const std::string& ref) { return evaluate(ref, &IVxLocator::ParentWorldMatrix); }

  // A channel read as a double.
  double number(const std::string& ref, const char* name, const char* action = "edit") {
    double value = -12345.0;
    EXPECT_EQ(reader(action)->Double(item(ref), channel(ref, name), &value), VXR_OK) << ref << "." << name;
    return value;
  }

  Scene scene;
  SdkScene sdk{scene};

 private:
  Matrix evaluate(const std::string& ref, VxResult (IVxLocator::*get)(IVxChannelRead*, double*)) {
    Matrix m{};
    IVxLocator* view = locator(ref);
    EXPECT_TRUE(view && (view->*get)(reader().get(), m.data()) == VXR_OK) << ref;
    return m;
  }

  bool ok_ = false;
};

inline void expectMatrixNear(const Matrix& actual, const Matrix& expected, const std::string& what) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-12) << what << " element " << i;
}

inline void expectPointNear(const Vector3& actual, const Vector3& expected, const std::string& what) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-12) << what << " coordinate " << i;
}

}  // namespace vexo
