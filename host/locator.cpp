#include "locator.h"

namespace {
IVxLocatorService* locatorService(const CVxUser_Scene& scene) {
  return scene.test() ? scene.raw()->LocatorService() : nullptr;
}
}  // namespace

CVxLocator::CVxLocator(const CVxUser_Scene& scene, const CVxUser_Item& item) {
  IVxLocatorService* service = locatorService(scene);
  if (!service || !item.test() || VxFailed(service->LocatorLookup(item.raw(), &locator_))) locator_ = nullptr;
}

bool CVxLocator::worldMatrix(const CVxChannelRead& read, double matrix[16]) const {
  return locator_ && read.test() && VxOk(locator_->WorldMatrix(read.raw(), matrix));
}

bool CVxLocator::parentWorldMatrix(const CVxChannelRead& read, double matrix[16]) const {
  return locator_ && read.test() && VxOk(locator_->ParentWorldMatrix(read.raw(), matrix));
}

bool CVxLocator::localMatrix(const CVxChannelRead& read, double matrix[16]) const {
  return locator_ && read.test() && VxOk(locator_->LocalMatrix(read.raw(), matrix));
}

CVxChannelLinks::CVxChannelLinks(const CVxUser_Scene& scene) {
  IVxLocatorService* service = locatorService(scene);
  links_ = service ? service->ChannelLinks() : nullptr;
}

bool CVxChannelLinks::isDriven(const CVxUser_Item& item, int channel) const {
  return links_ && item.test() && channel >= 0 && links_->IncomingCount(item.raw(), static_cast<unsigned>(channel)) > 0;
}

CVxItemList::CVxItemList(const CVxUser_Scene& scene) : service_(locatorService(scene)) {}
