// IVxDeformService over the engine's deform graphs.
#pragma once

#include "vexo/vx_deform.h"

namespace vexo {

class SdkScene;

class SdkDeformService final : public IVxDeformService {
 public:
  explicit SdkDeformService(SdkScene& scene) : scene_(scene) {}

  VxResult ItemGraph(IVxItem* item, const char* graph, IVxItemGraph** links) override;
  VxResult TestInfluence(IVxItem* item) override;
  VxResult InfluenceJoint(IVxItem* item, IVxItem** joint) override;

 private:
  SdkScene& scene_;
};

}  // namespace vexo
