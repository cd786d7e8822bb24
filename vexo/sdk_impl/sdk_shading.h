// IVxShaderService over a scene's ShadingStore: image maps' clips and texture
// locators, and clips' files and image headers.
#pragma once

#include "vexo/vx_shade.h"

namespace vexo {

class SdkScene;

class SdkShaderService final : public IVxShaderService {
 public:
  explicit SdkShaderService(SdkScene& scene) : scene_(scene) {}
  SdkShaderService(const SdkShaderService&) = delete;
  SdkShaderService& operator=(const SdkShaderService&) = delete;

  // Each answers VXR_BADARG for a null output and VXR_NOTFOUND for an item of
  // another scene or one without what is asked for.
  VxResult LayerClip(IVxItem* layer, IVxItem** clip) override;
  VxResult LayerTextureLocator(IVxItem* layer, IVxItem** locator) override;
  VxResult ClipFileName(IVxItem* clip, const char** path) override;
  VxResult ClipImageInfo(IVxItem* clip, VxImageInfo* info) override;

 private:
  SdkScene& scene_;
};

}  // namespace vexo
