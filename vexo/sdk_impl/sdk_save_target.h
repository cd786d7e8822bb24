// What the host hands a saver for one save call: the scene and whether this
// is the real save or the verify pass before it.
#pragma once

#include "vexo/vx_module.h"
#include "vexo/vx_scene.h"

namespace vexo {

class SaveTarget final : public IVxSaveTarget {
 public:
  SaveTarget(IVxScene& scene, bool real) : scene_(scene), real_(real) {}
  IVxScene* Scene() override { return &scene_; }
  bool IsRealSave() const override { return real_; }

 private:
  IVxScene& scene_;
  bool real_;
};

}  // namespace vexo
