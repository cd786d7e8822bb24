#include "scene.h"

CVxUser_Item CVxUser_Scene::firstItem(VxTypeCode type) const {
  if (!scene_ || type == VX_TYPE_ANY || scene_->ItemCount(type) == 0) return CVxUser_Item();
  return CVxUser_Item(scene_->ItemByIndex(type, 0));
}
