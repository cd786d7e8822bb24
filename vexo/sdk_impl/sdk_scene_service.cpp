#include "sdk_impl/sdk_scene_service.h"

namespace vexo {

VxResult SdkSceneService::LookupType(const char* name, VxTypeCode* type) {
  if (!name || !type) return VXR_BADARG;
  TypeCode code = types_.find(name);
  if (code == kNoType) return VXR_NOTFOUND;
  *type = code;
  return VXR_OK;
}

VxResult SdkSceneService::TypeName(VxTypeCode type, const char** name) {
  const ItemType* t = types_.type(type);
  if (!t || !name) return VXR_BADARG;
  *name = t->name.c_str();
  return VXR_OK;
}

VxResult SdkSceneService::TestType(VxTypeCode type, VxTypeCode base) {
  if (!types_.type(type) || (base != VX_TYPE_ANY && !types_.type(base))) return VXR_BADARG;
  return base == VX_TYPE_ANY || types_.derives(type, base) ? VXR_OK : VXR_FALSE;
}

}  // namespace vexo
