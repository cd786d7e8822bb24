// Vexo SDK: the shader tree's image maps, image clips and texture locators.
//
// Shader-tree layers are items whose types derive from "textureLayer" ("mask",
// "advancedMaterial", "glTFShader", "imageMap", ...). A layer's children are
// the layers it holds, child index 0 at the bottom of its stack; their
// channels ("enable", "effect", "ptag", "rgba", ...) read like any other.
// An image map shows the picture of an image clip and is projected by a
// texture locator ("txtrLocator"); both are items of their own that the map
// is linked to.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

// Image file formats, as the host learns them from a file's header.
enum VxImageFormat : std::int32_t {
  VX_IMAGE_UNKNOWN = 0,  // missing, unreadable, or a format the host does not know
  VX_IMAGE_PNG = 1,
  VX_IMAGE_JPEG = 2,
  VX_IMAGE_BMP = 3,
  VX_IMAGE_TGA = 4,
  VX_IMAGE_GIF = 5,
  VX_IMAGE_HDR = 6,
  VX_IMAGE_PSD = 7,
  VX_IMAGE_PNM = 8,
  VX_IMAGE_PIC = 9,
};

struct VxImageInfo {
  std::int32_t format;  // VxImageFormat
  std::uint32_t width;  // pixels; 0 when unknown
  std::uint32_t height;
};

class IVxShaderService {
 public:
  // The image clip an image-map layer shows. VXR_NOTFOUND when it has none.
  virtual VxResult LayerClip(IVxItem* layer, IVxItem** clip) = 0;
  // The texture locator that projects an image-map layer. VXR_NOTFOUND when none.
  virtual VxResult LayerTextureLocator(IVxItem* layer, IVxItem** locator) = 0;
  // The full path of the clip's image file. VXR_NOTFOUND when the clip has no
  // file; a clip whose file is missing still answers with its path.
  virtual VxResult ClipFileName(IVxItem* clip, const char** path) = 0;
  // What the clip's file header says. VXR_NOTFOUND, with format
  // VX_IMAGE_UNKNOWN and no size, when the file is missing or unreadable.
  virtual VxResult ClipImageInfo(IVxItem* clip, VxImageInfo* info) = 0;

 protected:
  ~IVxShaderService() = default;
};
