#include "scene_saver.h"

VxResult CVxSceneSaver::Save(IVxSaveTarget* target, const char* destination) {
  if (!target || !destination) return VXR_BADARG;
  target_ = target;
  VxResult result = VXR_FAILED;
  // The last guard of the plug-in boundary: a saver that lets an exception
  // out fails the save instead of taking the host down.
  try {
    result = ss_Save(CVxUser_Scene(target->Scene()), destination);
  } catch (...) {
    result = VXR_FAILED;
  }
  target_ = nullptr;
  return result;
}
