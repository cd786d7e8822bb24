// IVxUserValues over the host's user values.
#pragma once

#include "services/user_values.h"
#include "vexo/vx_services.h"

namespace vexo {

class SdkUserValues final : public IVxUserValues {
 public:
  explicit SdkUserValues(const UserValues& values) : values_(values) {}

  // Only integer values read as integers; a float value fails with VXR_BADARG.
  VxResult GetInt(const char* key, std::int32_t* value) override;
  // Integer and float values read as floats.
  VxResult GetFloat(const char* key, double* value) override;
  // Every value reads as the text it was set with.
  VxResult GetString(const char* key, const char** value) override;

 private:
  const UserValues& values_;
};

}  // namespace vexo
