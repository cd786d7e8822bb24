#include "sdk_impl/sdk_channel_read.h"

#include <cmath>
#include <limits>
#include <string>
#include <variant>

#include "engine/item.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {

SdkChannelRead::SdkChannelRead(SdkScene& scene, const std::string& action, double time)
    : scene_(scene), evaluation_(scene.scene(), action, time) {}

VxResult SdkChannelRead::resolve(IVxItem* item, unsigned channel, const void* out, const Value** resolved) {
  const Item* engineItem = scene_.unwrap(item);
  if (!engineItem || !out) return VXR_BADARG;
  if (channel >= engineItem->channelCount()) return VXR_OUTOFBOUNDS;
  // Only a matrix that needs itself, through links and parents, has no value.
  *resolved = evaluation_.value(*engineItem, channel);
  return *resolved ? VXR_OK : VXR_FAILED;
}

VxResult SdkChannelRead::Integer(IVxItem* item, unsigned channel, std::int32_t* value) {
  const Value* source = nullptr;
  if (VxResult r = resolve(item, channel, value, &source); VxFailed(r)) return r;
  const Value& v = *source;
  if (const auto* i = std::get_if<std::int32_t>(&v)) {
    *value = *i;
    return VXR_OK;
  }
  const auto* d = std::get_if<double>(&v);
  if (!d) return VXR_BADARG;
  double rounded = std::round(*d);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max()))
    return VXR_OUTOFBOUNDS;
  *value = static_cast<std::int32_t>(rounded);
  return VXR_OK;
}

VxResult SdkChannelRead::Double(IVxItem* item, unsigned channel, double* value) {
  const Value* source = nullptr;
  if (VxResult r = resolve(item, channel, value, &source); VxFailed(r)) return r;
  const Value& v = *source;
  if (const auto* d = std::get_if<double>(&v)) {
    *value = *d;
  } else if (const auto* i = std::get_if<std::int32_t>(&v)) {
    *value = *i;
  } else {
    return VXR_BADARG;
  }
  return VXR_OK;
}

VxResult SdkChannelRead::Text(IVxItem* item, unsigned channel, const char** value) {
  const Value* source = nullptr;
  if (VxResult r = resolve(item, channel, value, &source); VxFailed(r)) return r;
  const auto* text = std::get_if<std::string>(source);
  if (!text) return VXR_BADARG;
  *value = text->c_str();
  return VXR_OK;
}

VxResult SdkChannelRead::Matrix(IVxItem* item, unsigned channel, double matrix[16]) {
  const Value* source = nullptr;
  if (VxResult r = resolve(item, channel, matrix, &source); VxFailed(r)) return r;
  const auto* m = std::get_if<vexo::Matrix>(source);
  if (!m) return VXR_BADARG;
  for (int i = 0; i < 16; ++i) matrix[i] = (*m)[i];
  return VXR_OK;
}

}  // namespace vexo
