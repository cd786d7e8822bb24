#include "sdk_impl/sdk_user_values.h"

namespace vexo {

VxResult SdkUserValues::GetInt(const char* key, std::int32_t* value) {
  if (!key || !value) return VXR_BADARG;
  const UserValue* found = values_.find(key);
  if (!found) return VXR_NOTFOUND;
  if (found->kind != UserValue::Kind::Integer) return VXR_BADARG;
  *value = found->integer;
  return VXR_OK;
}

VxResult SdkUserValues::GetFloat(const char* key, double* value) {
  if (!key || !value) return VXR_BADARG;
  const UserValue* found = values_.find(key);
  if (!found) return VXR_NOTFOUND;
  if (found->kind == UserValue::Kind::Text) return VXR_BADARG;
  *value = found->number;
  return VXR_OK;
}

VxResult SdkUserValues::GetString(const char* key, const char** value) {
  if (!key || !value) return VXR_BADARG;
  const UserValue* found = values_.find(key);
  if (!found) return VXR_NOTFOUND;
  *value = found->text.c_str();
  return VXR_OK;
}

}  // namespace vexo
