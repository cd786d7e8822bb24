#include "server.h"

VxResult CVxTagTable::TagByIndex(unsigned index, VxTag* tag) const {
  if (!tag) return VXR_BADARG;
  if (index >= tags_.size()) return VXR_OUTOFBOUNDS;
  tag->name = tags_[index].first.c_str();
  tag->value = tags_[index].second.c_str();
  return VXR_OK;
}

const char* CVxFactoryBase::InterfaceName(unsigned index) const {
  return index == 0 ? interface_ : index == 1 ? VX_INTERFACE_STATICDESC : nullptr;
}

VxResult CVxModule::addServer(IVxHost* host, std::unique_ptr<CVxFactoryBase> factory) {
  if (!host || !factory) return VXR_BADARG;
  VxResult result = host->RegisterServer(factory.get());
  if (VxOk(result)) factories_.push_back(std::move(factory));
  return result;
}
