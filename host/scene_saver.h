// The scene-saver base: turns the host's save call into ss_Save().
#pragma once

#include "scene.h"
#include "vexo/vx_module.h"

class CVxSceneSaver : public IVxSaver {
 public:
  virtual ~CVxSceneSaver() = default;

  VxResult Save(IVxSaveTarget* target, const char* destination) override;
  void Release() override { delete this; }

 protected:
  // The save callback: the scene to save and the destination path.
  virtual VxResult ss_Save(const CVxUser_Scene& scene, const char* destination) = 0;
  // False while the host runs its verify pass.
  bool ss_IsRealSave() const { return target_ && target_->IsRealSave(); }

 private:
  IVxSaveTarget* target_ = nullptr;
};
