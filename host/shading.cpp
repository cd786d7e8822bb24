#include "shading.h"

#include "vexo/vx_shade.h"

CVxShading::CVxShading(const CVxUser_Scene& scene) : service_(scene.test() ? scene.raw()->ShaderService() : nullptr) {}

CVxUser_Item CVxShading::clip(const CVxUser_Item& layer) const {
  IVxItem* clip = nullptr;
  if (!service_ || !layer.test() || VxFailed(service_->LayerClip(layer.raw(), &clip))) return CVxUser_Item();
  return CVxUser_Item(clip);
}

CVxUser_Item CVxShading::textureLocator(const CVxUser_Item& layer) const {
  IVxItem* locator = nullptr;
  if (!service_ || !layer.test() || VxFailed(service_->LayerTextureLocator(layer.raw(), &locator))) {
    return CVxUser_Item();
  }
  return CVxUser_Item(locator);
}

std::string CVxShading::clipFile(const CVxUser_Item& clip) const {
  const char* path = nullptr;
  if (!service_ || !clip.test() || VxFailed(service_->ClipFileName(clip.raw(), &path)) || !path) {
    return std::string();
  }
  return path;
}

bool CVxShading::imageInfo(const CVxUser_Item& clip, CVxImageInfo& info) const {
  info = CVxImageInfo();
  VxImageInfo raw{VX_IMAGE_UNKNOWN, 0, 0};
  if (!service_ || !clip.test() || VxFailed(service_->ClipImageInfo(clip.raw(), &raw))) return false;
  info.format = raw.format;
  info.width = raw.width;
  info.height = raw.height;
  return true;
}
