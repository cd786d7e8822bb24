// Where each image-map effect goes in a material, and the checks of how the
// image map is set up (channel swizzling, image shared with another slot).
#pragma once

#include <cstdint>
#include <string>

#include "core/gltf_log_msg.h"
#include "gltf/document.h"

// A built texture as a slot takes it.
struct SlotTexture {
  std::uint32_t index = GltfDocument::kNone;  // the glTF texture; kNone: the slot is empty
  std::string imageFile;                       // compared whole for the same-image rule
  std::string uvMap;                           // becomes "texCoord" once a mesh uses the material
  std::uint32_t texCoord = 0;
};

// What the image map's "swizzling" and "rgba" channels hold.
struct Swizzle {
  std::int32_t on = 0;
  std::int32_t rgba = 0;
};

struct MaterialSlots {
  SlotTexture baseColor, metallicRoughness, normal, occlusion, emissive;
};

// Every slot of MaterialSlots, for walking them alike.
extern SlotTexture MaterialSlots::* const kMaterialSlots[5];

// Host "rgba" codes.
enum SwizzleCode : std::int32_t {
  kSwizzleRgb = 0,
  kSwizzleAlpha = 2,
  kSwizzleRed = 3,
  kSwizzleGreen = 4,
  kSwizzleBlue = 5
};

// Checks the image map `layerName` of effect `effect` against its rule and puts
// the texture into the slot the effect names; the checks only warn. "dissolve"
// has no slot and is only checked; effects outside the table are ignored.
void attachTexture(MaterialSlots& slots, const std::string& effect, const std::string& layerName,
                   const SlotTexture& texture, const Swizzle& swizzle, GltfLogMsg& log);

// Copies the filled slots (index and texCoord) into the material's texture keys.
void applySlots(GltfMaterialDesc& material, const MaterialSlots& slots);
