#include "sdk_impl/sdk_shading.h"

#include "sdk_impl/sdk_scene.h"
#include "shading/image_header.h"

namespace vexo {

static_assert(static_cast<std::int32_t>(ImageFormat::Png) == VX_IMAGE_PNG &&
                  static_cast<std::int32_t>(ImageFormat::Jpeg) == VX_IMAGE_JPEG &&
                  static_cast<std::int32_t>(ImageFormat::Bmp) == VX_IMAGE_BMP &&
                  static_cast<std::int32_t>(ImageFormat::Tga) == VX_IMAGE_TGA &&
                  static_cast<std::int32_t>(ImageFormat::Gif) == VX_IMAGE_GIF &&
                  static_cast<std::int32_t>(ImageFormat::Hdr) == VX_IMAGE_HDR &&
                  static_cast<std::int32_t>(ImageFormat::Psd) == VX_IMAGE_PSD &&
                  static_cast<std::int32_t>(ImageFormat::Pnm) == VX_IMAGE_PNM &&
                  static_cast<std::int32_t>(ImageFormat::Pic) == VX_IMAGE_PIC,
              "the engine's image formats carry the SDK's codes");

VxResult SdkShaderService::LayerClip(IVxItem* layer, IVxItem** clip) {
  if (!clip) return VXR_BADARG;
  *clip = nullptr;
  Item* item = scene_.unwrap(layer);
  Item* found = item ? scene_.scene().shading().layerClip(*item) : nullptr;
  if (!found) return VXR_NOTFOUND;
  *clip = scene_.wrap(found);
  return VXR_OK;
}

VxResult SdkShaderService::LayerTextureLocator(IVxItem* layer, IVxItem** locator) {
  if (!locator) return VXR_BADARG;
  *locator = nullptr;
  Item* item = scene_.unwrap(layer);
  Item* found = item ? scene_.scene().shading().layerLocator(*item) : nullptr;
  if (!found) return VXR_NOTFOUND;
  *locator = scene_.wrap(found);
  return VXR_OK;
}

VxResult SdkShaderService::ClipFileName(IVxItem* clip, const char** path) {
  if (!path) return VXR_BADARG;
  *path = nullptr;
  Item* item = scene_.unwrap(clip);
  const std::string* file = item ? scene_.scene().shading().clipFile(*item) : nullptr;
  if (!file) return VXR_NOTFOUND;
  *path = file->c_str();
  return VXR_OK;
}

VxResult SdkShaderService::ClipImageInfo(IVxItem* clip, VxImageInfo* info) {
  if (!info) return VXR_BADARG;
  *info = VxImageInfo{VX_IMAGE_UNKNOWN, 0, 0};
  Item* item = scene_.unwrap(clip);
  const ImageHeader* header = item ? scene_.scene().shading().clipHeader(*item) : nullptr;
  if (!header) return VXR_NOTFOUND;
  *info = VxImageInfo{static_cast<std::int32_t>(header->format), header->width, header->height};
  return VXR_OK;
}

}  // namespace vexo
