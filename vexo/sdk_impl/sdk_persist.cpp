#include "sdk_impl/sdk_persist.h"

#include <cmath>
#include <limits>
#include <new>

namespace vexo {

const char* SdkPersistEntries::EntryName(unsigned index) const {
  return index < entries_.size() ? entries_[index].name.c_str() : nullptr;
}

VxResult SdkPersistEntries::EntryInt(unsigned index, std::int32_t* value) const {
  if (index >= entries_.size()) return VXR_OUTOFBOUNDS;
  const ConfigValue& entry = entries_[index].value;
  if (!value) return VXR_BADARG;
  if (entry.kind == ConfigValue::Kind::Boolean) return *value = entry.boolean ? 1 : 0, VXR_OK;
  if (entry.kind != ConfigValue::Kind::Integer || entry.integer < std::numeric_limits<std::int32_t>::min() ||
      entry.integer > std::numeric_limits<std::int32_t>::max())
    return VXR_BADARG;
  *value = static_cast<std::int32_t>(entry.integer);
  return VXR_OK;
}

VxResult SdkPersistEntries::EntryFloat(unsigned index, double* value) const {
  if (index >= entries_.size()) return VXR_OUTOFBOUNDS;
  const ConfigValue& entry = entries_[index].value;
  if (!value || (entry.kind != ConfigValue::Kind::Integer && entry.kind != ConfigValue::Kind::Float))
    return VXR_BADARG;
  *value = entry.number;
  return VXR_OK;
}

VxResult SdkPersistEntries::EntryText(unsigned index, const char** text) const {
  if (index >= entries_.size()) return VXR_OUTOFBOUNDS;
  if (!text || entries_[index].value.kind != ConfigValue::Kind::Text) return VXR_BADARG;
  *text = entries_[index].value.text.c_str();
  return VXR_OK;
}

// Called by module code: out of memory loses the reason rather than throwing into the module.
void SdkPersistEntries::Reject(unsigned index, const char* reason) {
  try {
    rejected_.emplace_back(index, reason ? reason : "is not valid");
  } catch (const std::bad_alloc&) {
  }
}

VxResult SdkPersistSink::add(const char* name, ConfigValue value) {
  if (!name || !*name) return VXR_BADARG;
  try {
    entries_.push_back({name, std::move(value), {}});
  } catch (const std::bad_alloc&) {
    return VXR_FAILED;
  }
  return VXR_OK;
}

VxResult SdkPersistSink::WriteBoolean(const char* name, bool value) {
  ConfigValue out;
  out.kind = ConfigValue::Kind::Boolean;
  out.boolean = value;
  return add(name, std::move(out));
}

VxResult SdkPersistSink::WriteInt(const char* name, std::int32_t value) {
  ConfigValue out;
  out.kind = ConfigValue::Kind::Integer;
  out.integer = value;
  out.number = value;
  return add(name, std::move(out));
}

VxResult SdkPersistSink::WriteFloat(const char* name, double value) {
  if (!std::isfinite(value)) return VXR_BADARG;
  ConfigValue out;
  out.kind = ConfigValue::Kind::Float;
  out.number = value;
  return add(name, std::move(out));
}

VxResult SdkPersistSink::WriteText(const char* name, const char* text) {
  if (!text) return VXR_BADARG;
  ConfigValue out;
  out.kind = ConfigValue::Kind::Text;
  out.text = text;
  return add(name, std::move(out));
}

}  // namespace vexo
