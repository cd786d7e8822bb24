#include "user_values.h"

#include "vx_host.h"

std::int32_t CVxUserValues::getInt(const char* key, std::int32_t fallback) {
  IVxHost* host = CVxHost::get();
  IVxUserValues* values = host ? host->UserValues() : nullptr;
  std::int32_t value = 0;
  if (!values || VxFailed(values->GetInt(key, &value))) return fallback;
  return value;
}
