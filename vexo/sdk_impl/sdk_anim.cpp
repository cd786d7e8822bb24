#include "sdk_impl/sdk_anim.h"

#include "animation/actors.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {

IVxItem* SdkActor::Item() { return scene_.wrap(&actor_); }

unsigned SdkActor::ItemCount() {
  return static_cast<unsigned>(scene_.scene().actors().members(actor_).size());
}

IVxItem* SdkActor::ItemByIndex(unsigned index) {
  const auto& members = scene_.scene().actors().members(actor_);
  return index < members.size() ? scene_.wrap(members[index]) : nullptr;
}

const std::vector<std::pair<vexo::Item*, std::size_t>>& SdkActor::channels() {
  if (channelsRevision_ != scene_.scene().valueRevision()) {
    channels_ = actorChannels(scene_.scene(), actor_);
    channelsRevision_ = scene_.scene().valueRevision();
  }
  return channels_;
}

const std::vector<vexo::Item*>& SdkActor::actions() {
  if (actionsRevision_ != scene_.scene().revision()) {
    actions_ = actorActions(scene_.scene(), actor_);
    actionsRevision_ = scene_.scene().revision();
  }
  return actions_;
}

VxResult SdkActor::ChannelByIndex(unsigned index, IVxItem** item, unsigned* channel) {
  if (!item || !channel) return VXR_BADARG;
  const auto& list = channels();
  if (index >= list.size()) return VXR_OUTOFBOUNDS;
  *item = scene_.wrap(list[index].first);
  *channel = static_cast<unsigned>(list[index].second);
  return VXR_OK;
}

IVxItem* SdkActor::ActionByIndex(unsigned index) {
  const auto& list = actions();
  return index < list.size() ? scene_.wrap(list[index]) : nullptr;
}

vexo::Item* SdkActor::ownAction(IVxItem* action) {
  vexo::Item* item = scene_.unwrap(action);
  return item && actionActor(scene_.scene(), *item) == &actor_ ? item : nullptr;
}

VxResult SdkActor::ActionIsActive(IVxItem* action) {
  const vexo::Item* item = ownAction(action);
  if (!item) return VXR_BADARG;
  return isActionActive(scene_.scene(), *item) ? VXR_OK : VXR_FALSE;
}

VxResult SdkActor::SetActionActive(IVxItem* action, bool active) {
  vexo::Item* item = ownAction(action);
  if (!item) return VXR_BADARG;
  return setActionActive(scene_.scene(), *item, active) ? VXR_OK : VXR_FAILED;
}

VxResult SdkAnimService::ActorLookup(IVxItem* item, IVxActor** actor) {
  if (!item || !actor) return VXR_BADARG;
  vexo::Item* engineItem = scene_.unwrap(item);
  if (!engineItem) return VXR_BADARG;
  const Scene& scene = scene_.scene();
  if (!scene.types().derives(engineItem->typeCode(), scene.types().find("actor"))) return VXR_NOTFOUND;
  auto& view = actors_[engineItem];
  if (!view) view = std::make_unique<SdkActor>(scene_, *engineItem);
  *actor = view.get();
  return VXR_OK;
}

unsigned SdkAnimService::CurrentGroupCount() {
  return static_cast<unsigned>(currentGroups(scene_.scene()).size());
}

IVxItem* SdkAnimService::CurrentGroupByIndex(unsigned index) {
  const auto groups = currentGroups(scene_.scene());
  return index < groups.size() ? scene_.wrap(groups[index]) : nullptr;
}

const KeyCurve* SdkAnimService::keys(const char* action, IVxItem* item, unsigned channel) {
  const vexo::Item* engineItem = scene_.unwrap(item);
  if (!action || !*action || !engineItem || channel >= engineItem->channelCount()) return nullptr;
  if (!evaluation_ || evaluation_->action() != action)
    evaluation_ = std::make_unique<Evaluation>(scene_.scene(), action, 0.0);
  return evaluation_->keys(*engineItem, channel);
}

VxResult SdkAnimService::IsAnimated(const char* action, IVxItem* item, unsigned channel) {
  const vexo::Item* engineItem = scene_.unwrap(item);
  if (!action || !*action || !engineItem) return VXR_BADARG;
  if (channel >= engineItem->channelCount()) return VXR_OUTOFBOUNDS;
  if (keys(action, item, channel)) return VXR_OK;
  return scene_.scene().links().incoming(*engineItem, channel).empty() ? VXR_FALSE : VXR_OK;
}

unsigned SdkAnimService::KeyCount(const char* action, IVxItem* item, unsigned channel) {
  const KeyCurve* curve = keys(action, item, channel);
  return curve ? static_cast<unsigned>(curve->size()) : 0;
}

VxResult SdkAnimService::KeyTime(const char* action, IVxItem* item, unsigned channel, unsigned index,
                                 double* time) {
  if (!time) return VXR_BADARG;
  const KeyCurve* curve = keys(action, item, channel);
  if (!curve || index >= curve->size()) return VXR_OUTOFBOUNDS;
  *time = curve->key(index).time;
  return VXR_OK;
}

unsigned SdkAnimService::IKJointCount(IVxItem* solver) {
  const vexo::Item* item = scene_.unwrap(solver);
  return item ? static_cast<unsigned>(scene_.scene().actors().joints(*item).size()) : 0;
}

IVxItem* SdkAnimService::IKJointByIndex(IVxItem* solver, unsigned index) {
  const vexo::Item* item = scene_.unwrap(solver);
  if (!item) return nullptr;
  const auto& joints = scene_.scene().actors().joints(*item);
  return index < joints.size() ? scene_.wrap(joints[index]) : nullptr;
}

}  // namespace vexo
