#include "sdk_impl/sdk_scene.h"

#include <cmath>

#include "sdk_impl/sdk_channel_read.h"
#include "sdk_impl/sdk_locator.h"

namespace vexo {

VxChannelType sdkChannelType(ValueType type) {
  static const VxChannelType kCodes[] = {VX_CHAN_INTEGER, VX_CHAN_FLOAT, VX_CHAN_TEXT, VX_CHAN_MATRIX};
  return kCodes[static_cast<int>(type)];
}

IVxScene* SdkItem::Scene() { return &scene_; }

IVxItem* SdkItem::Parent() { return scene_.wrap(item_.parent()); }

IVxItem* SdkItem::ChildByIndex(unsigned index) {
  const auto& children = item_.children();
  return index < children.size() ? scene_.wrap(children[index]) : nullptr;
}

VxResult SdkItem::ChannelLookup(const char* name, unsigned* index) {
  if (!name || !index) return VXR_BADARG;
  int found = scene_.scene().types().findChannel(item_.typeCode(), name);
  if (found < 0) return VXR_NOTFOUND;
  *index = static_cast<unsigned>(found);
  return VXR_OK;
}

VxResult SdkItem::ChannelName(unsigned index, const char** name) {
  if (!name) return VXR_BADARG;
  if (index >= item_.channelCount()) return VXR_OUTOFBOUNDS;
  *name = item_.channel(index).name.c_str();
  return VXR_OK;
}

VxResult SdkItem::ChannelType(unsigned index, VxChannelType* type) {
  if (!type) return VXR_BADARG;
  if (index >= item_.channelCount()) return VXR_OUTOFBOUNDS;
  *type = sdkChannelType(item_.channel(index).type);
  return VXR_OK;
}

SdkScene::SdkScene(vexo::Scene& scene) : scene_(scene), locatorService_(std::make_unique<SdkLocatorService>(*this)) {}

SdkScene::~SdkScene() = default;

IVxLocatorService* SdkScene::LocatorService() { return locatorService_.get(); }

Evaluation& SdkScene::evaluation(const char* action, double time) {
  // Sampling moves through time in one action: keep what the channels read from.
  if (!evaluation_ || evaluation_->action() != action)
    evaluation_ = std::make_unique<Evaluation>(scene_, action, time);
  else if (!(evaluation_->time() == time))
    evaluation_->setTime(time);
  return *evaluation_;
}

IVxItem* SdkScene::wrap(Item* item) {
  if (!item) return nullptr;
  auto& wrapper = wrappers_[item];
  if (!wrapper) wrapper = std::make_unique<SdkItem>(*this, *item);
  return wrapper.get();
}

Item* SdkScene::unwrap(IVxItem* item) const {
  auto* ours = dynamic_cast<SdkItem*>(item);
  return ours && &ours->owner() == this ? &ours->item() : nullptr;
}

const std::vector<Item*>& SdkScene::itemsOfType(VxTypeCode type) {
  TypeView& view = typeViews_[type];
  if (!view.filled || view.revision != scene_.revision()) {
    view.filled = true;
    view.items = scene_.itemsOfType(type == VX_TYPE_ANY ? kNoType : type);
    view.revision = scene_.revision();
  }
  return view.items;
}

unsigned SdkScene::ItemCount(VxTypeCode type) {
  if (type != VX_TYPE_ANY && !scene_.types().type(type)) return 0;
  return static_cast<unsigned>(itemsOfType(type).size());
}

IVxItem* SdkScene::ItemByIndex(VxTypeCode type, unsigned index) {
  if (type != VX_TYPE_ANY && !scene_.types().type(type)) return nullptr;
  const auto& items = itemsOfType(type);
  return index < items.size() ? wrap(items[index]) : nullptr;
}

IVxItem* SdkScene::ItemByIdent(const char* ident) { return ident ? wrap(scene_.findIdent(ident)) : nullptr; }

unsigned SdkScene::SelectionCount(const char* selectionType) {
  return selectionType ? static_cast<unsigned>(scene_.selection(selectionType).size()) : 0;
}

IVxItem* SdkScene::SelectionByIndex(const char* selectionType, unsigned index) {
  if (!selectionType) return nullptr;
  const auto& selected = scene_.selection(selectionType);
  return index < selected.size() ? wrap(selected[index]) : nullptr;
}

VxResult SdkScene::ChannelRead(const char* action, double time, IVxChannelRead** read) {
  if (!action || !*action || !read || !std::isfinite(time)) return VXR_BADARG;
  *read = new SdkChannelRead(*this, action, time);
  return VXR_OK;
}

VxResult SdkScene::SetTime(double time) {
  if (!std::isfinite(time)) return VXR_BADARG;
  scene_.setTime(time);
  return VXR_OK;
}

}  // namespace vexo
