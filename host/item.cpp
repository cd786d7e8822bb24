#include "item.h"

#include "vx_host.h"

namespace {
IVxSceneService* sceneService() {
  IVxHost* host = CVxHost::get();
  return host ? host->SceneService() : nullptr;
}
}  // namespace

VxTypeCode CVxItemTypes::lookup(const char* name) {
  IVxSceneService* service = sceneService();
  VxTypeCode type = VX_TYPE_ANY;
  if (!service || VxFailed(service->LookupType(name, &type))) return VX_TYPE_ANY;
  return type;
}

std::string CVxItemTypes::name(VxTypeCode type) {
  IVxSceneService* service = sceneService();
  const char* name = nullptr;
  if (!service || VxFailed(service->TypeName(type, &name)) || !name) return std::string();
  return name;
}

bool CVxItemTypes::test(VxTypeCode type, VxTypeCode base) {
  IVxSceneService* service = sceneService();
  if (!service || type == VX_TYPE_ANY || base == VX_TYPE_ANY) return false;
  return service->TestType(type, base) == VXR_OK;
}

bool CVxUser_Item::isA(VxTypeCode base) const { return item_ && CVxItemTypes::test(item_->Type(), base); }

int CVxUser_Item::channelIndex(const char* name) const {
  unsigned index = 0;
  if (!item_ || VxFailed(item_->ChannelLookup(name, &index))) return -1;
  return static_cast<int>(index);
}

std::string CVxUser_Item::channelName(unsigned index) const {
  const char* name = nullptr;
  if (!item_ || VxFailed(item_->ChannelName(index, &name)) || !name) return std::string();
  return name;
}

CVxChannelRead::CVxChannelRead(IVxScene* scene, const char* action, double time) {
  if (scene && VxFailed(scene->ChannelRead(action, time, &read_))) read_ = nullptr;
}

CVxChannelRead::~CVxChannelRead() {
  if (read_) read_->Release();
}

CVxChannelRead::CVxChannelRead(CVxChannelRead&& other) noexcept : read_(other.read_) { other.read_ = nullptr; }

CVxChannelRead& CVxChannelRead::operator=(CVxChannelRead&& other) noexcept {
  if (this != &other) {
    if (read_) read_->Release();
    read_ = other.read_;
    other.read_ = nullptr;
  }
  return *this;
}

bool CVxChannelRead::integer(const CVxUser_Item& item, int channel, std::int32_t& value) const {
  return read_ && item.test() && channel >= 0 &&
         VxOk(read_->Integer(item.raw(), static_cast<unsigned>(channel), &value));
}

bool CVxChannelRead::real(const CVxUser_Item& item, int channel, double& value) const {
  return read_ && item.test() && channel >= 0 &&
         VxOk(read_->Double(item.raw(), static_cast<unsigned>(channel), &value));
}

bool CVxChannelRead::text(const CVxUser_Item& item, int channel, std::string& value) const {
  const char* text = nullptr;
  if (!read_ || !item.test() || channel < 0 ||
      VxFailed(read_->Text(item.raw(), static_cast<unsigned>(channel), &text)) || !text)
    return false;
  value = text;
  return true;
}

bool CVxChannelRead::matrix(const CVxUser_Item& item, int channel, double value[16]) const {
  return read_ && item.test() && channel >= 0 &&
         VxOk(read_->Matrix(item.raw(), static_cast<unsigned>(channel), value));
}
