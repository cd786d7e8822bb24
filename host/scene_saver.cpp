#include "scene_saver.h"

VxResult CVxSceneSaver::Save(IVxSaveTarget* target, const char* destination) {
  if (!target || !destination) return VXR_BADARG;
  target_ = target;
  VxResult result = ss_Save(CVxUser_Scene(target->Scene()), destination);
  target_ = nullptr;
  return result;
}
