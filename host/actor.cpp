#include "actor.h"

namespace {
IVxAnimService* animService(const CVxUser_Scene& scene) { return scene.test() ? scene.raw()->AnimService() : nullptr; }
}  // namespace

CVxActor::CVxActor(const CVxUser_Scene& scene, const CVxUser_Item& item) {
  IVxAnimService* service = animService(scene);
  if (!service || !item.test() || VxFailed(service->ActorLookup(item.raw(), &actor_))) actor_ = nullptr;
}

bool CVxActor::channelAt(unsigned index, CVxUser_Item& item, unsigned& channel) const {
  IVxItem* found = nullptr;
  unsigned foundChannel = 0;
  if (!actor_ || VxFailed(actor_->ChannelByIndex(index, &found, &foundChannel)) || !found) return false;
  item = CVxUser_Item(found);
  channel = foundChannel;
  return true;
}

bool CVxActor::isActive(const CVxUser_Item& action) const {
  return actor_ && action.test() && actor_->ActionIsActive(action.raw()) == VXR_OK;
}

bool CVxActor::setActive(const CVxUser_Item& action, bool active) const {
  return actor_ && action.test() && VxOk(actor_->SetActionActive(action.raw(), active));
}

int CVxActor::activeIndex() const {
  for (unsigned i = 0; i < actionCount(); ++i)
    if (isActive(actionAt(i))) return static_cast<int>(i);
  return -1;
}

CVxCurrentGroups::CVxCurrentGroups(const CVxUser_Scene& scene) : service_(animService(scene)) {}

CVxIKChain::CVxIKChain(const CVxUser_Scene& scene, const CVxUser_Item& solver)
    : service_(animService(scene)), solver_(solver.raw()) {}
