// Wrappers over the locator view of an item and the channel-link view.
#pragma once

#include "item.h"
#include "scene.h"
#include "vexo/vx_locator.h"

class CVxLocator {
 public:
  // Empty (test() false) when the item has no locator view.
  CVxLocator(const CVxUser_Scene& scene, const CVxUser_Item& item);

  bool test() const { return locator_ != nullptr; }
  bool worldMatrix(const CVxChannelRead& read, double matrix[16]) const;
  bool parentWorldMatrix(const CVxChannelRead& read, double matrix[16]) const;
  // The product of the item's own transform stack.
  bool localMatrix(const CVxChannelRead& read, double matrix[16]) const;

  unsigned transformCount() const { return locator_ ? locator_->TransformCount() : 0; }
  CVxUser_Item transform(unsigned index) const {
    return CVxUser_Item(locator_ ? locator_->TransformByIndex(index) : nullptr);
  }
  CVxUser_Item mainTransform(VxMainTransform which) const {
    return CVxUser_Item(locator_ ? locator_->MainTransform(which) : nullptr);
  }

 private:
  IVxLocator* locator_ = nullptr;
};

class CVxChannelLinks {
 public:
  explicit CVxChannelLinks(const CVxUser_Scene& scene);
  bool test() const { return links_ != nullptr; }
  // True when at least one link drives the channel.
  bool isDriven(const CVxUser_Item& item, int channel) const;

 private:
  IVxChannelLinks* links_ = nullptr;
};

// The ordered item list a host hands over for "export these items".
class CVxItemList {
 public:
  explicit CVxItemList(const CVxUser_Scene& scene);
  unsigned count() const { return service_ ? service_->ItemListCount() : 0; }
  CVxUser_Item item(unsigned index) const {
    return CVxUser_Item(service_ ? service_->ItemListByIndex(index) : nullptr);
  }

 private:
  IVxLocatorService* service_ = nullptr;
};
