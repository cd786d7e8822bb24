// IVxSceneService over a type registry: type codes are registry codes.
#pragma once

#include "engine/item_types.h"
#include "vexo/vx_scene.h"

namespace vexo {

class SdkSceneService final : public IVxSceneService {
 public:
  explicit SdkSceneService(const TypeRegistry& types) : types_(types) {}

  VxResult LookupType(const char* name, VxTypeCode* type) override;
  VxResult TypeName(VxTypeCode type, const char** name) override;
  // VX_TYPE_ANY as the base matches every type.
  VxResult TestType(VxTypeCode type, VxTypeCode base) override;

 private:
  const TypeRegistry& types_;
};

}  // namespace vexo
