// Wrappers over the shader tree's image maps: their clips, image files and
// texture locators.
#pragma once

#include <cstdint>
#include <string>

#include "scene.h"

// What the host read from an image file's header.
struct CVxImageInfo {
  std::int32_t format = 0;  // 1 PNG, 2 JPEG, other codes other formats, 0 unknown
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

class CVxShading {
 public:
  explicit CVxShading(const CVxUser_Scene& scene);

  bool test() const { return service_ != nullptr; }
  // The image clip an image-map layer shows; an empty item when it has none.
  CVxUser_Item clip(const CVxUser_Item& layer) const;
  // The texture locator projecting an image-map layer; an empty item when none.
  CVxUser_Item textureLocator(const CVxUser_Item& layer) const;
  // The clip's image file path; empty when the clip has no file.
  std::string clipFile(const CVxUser_Item& clip) const;
  // The file's format and size; false (and format 0) when the host could not read it.
  bool imageInfo(const CVxUser_Item& clip, CVxImageInfo& info) const;

 private:
  IVxShaderService* service_ = nullptr;
};
