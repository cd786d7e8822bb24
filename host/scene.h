// Wrapper over the host scene: item iteration, selection, evaluation time.
#pragma once

#include "item.h"

class CVxUser_Scene {
 public:
  CVxUser_Scene() = default;
  explicit CVxUser_Scene(IVxScene* scene) : scene_(scene) {}

  bool test() const { return scene_ != nullptr; }
  IVxScene* raw() const { return scene_; }

  // Items whose type tests as `type` (VX_TYPE_ANY: all), in scene order.
  unsigned itemCount(VxTypeCode type) const { return scene_ ? scene_->ItemCount(type) : 0; }
  CVxUser_Item item(VxTypeCode type, unsigned index) const {
    return CVxUser_Item(scene_ ? scene_->ItemByIndex(type, index) : nullptr);
  }
  // The first item of a type, or an empty item.
  CVxUser_Item firstItem(VxTypeCode type) const;
  CVxUser_Item sceneItem() const { return CVxUser_Item(scene_ ? scene_->SceneItem() : nullptr); }

  unsigned selectionCount(const char* selectionType) const {
    return scene_ ? scene_->SelectionCount(selectionType) : 0;
  }
  CVxUser_Item selected(const char* selectionType, unsigned index) const {
    return CVxUser_Item(scene_ ? scene_->SelectionByIndex(selectionType, index) : nullptr);
  }

  double time() const { return scene_ ? scene_->Time() : 0.0; }
  bool setTime(double time) const { return scene_ && VxOk(scene_->SetTime(time)); }
  CVxChannelRead channelRead(const char* action, double time) const {
    return CVxChannelRead(scene_, action, time);
  }

 private:
  IVxScene* scene_ = nullptr;
};
