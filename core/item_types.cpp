#include "item_types.h"

#include "host/item.h"

namespace {

struct TypeName {
  const char* name;
  VxTypeCode ItemTypes::*code;
};

constexpr TypeName kTypeNames[] = {
    {"scene", &ItemTypes::scene},
    {"locator", &ItemTypes::locator},
    {"groupLocator", &ItemTypes::groupLocator},
    {"camera", &ItemTypes::camera},
    {"light", &ItemTypes::light},
    {"sunLight", &ItemTypes::sunLight},
    {"pointLight", &ItemTypes::pointLight},
    {"spotLight", &ItemTypes::spotLight},
    {"areaLight", &ItemTypes::areaLight},
    {"lightMaterial", &ItemTypes::lightMaterial},
    {"mesh", &ItemTypes::mesh},
    {"meshInst", &ItemTypes::meshInst},
    {"triSurf", &ItemTypes::triSurf},
    {"morphDeform", &ItemTypes::morphDeform},
    {"txtrLocator", &ItemTypes::txtrLocator},
    {"polyRender", &ItemTypes::polyRender},
    {"mask", &ItemTypes::mask},
    {"advancedMaterial", &ItemTypes::advancedMaterial},
    {"imageMap", &ItemTypes::imageMap},
    {"deformGroup", &ItemTypes::deformGroup},
    {"scale", &ItemTypes::scale},
    {"rotation", &ItemTypes::rotation},
    {"translation", &ItemTypes::translation},
    {"transform", &ItemTypes::transform},
    {"shear", &ItemTypes::shear},
    {"ikFullBody", &ItemTypes::ikFullBody},
    {"actionclip", &ItemTypes::actionclip},
    {"group", &ItemTypes::group},
    {"unityShader", &ItemTypes::unityShader},
    {"unrealShader", &ItemTypes::unrealShader},
    {"replicator", &ItemTypes::replicator},
    {"glTFShader", &ItemTypes::glTFShader},
};

}  // namespace

ItemTypes ItemTypes::lookup() {
  ItemTypes types{};
  for (const TypeName& entry : kTypeNames) types.*entry.code = CVxItemTypes::lookup(entry.name);
  return types;
}
