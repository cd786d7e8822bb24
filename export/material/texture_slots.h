// Where each image-map effect goes in a material, and the checks of how the
// image map is set up (channel swizzling, image shared with another slot).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/gltf_log_msg.h"
#include "gltf/document.h"

// A built texture as a slot takes it.
struct SlotTexture {
  std::uint32_t index = GltfDocument::kNone;  // the glTF texture; kNone: the slot is empty
  std::string imageFile;                       // compared whole for the same-image rule
  std::string uvMap;                           // becomes "texCoord" per mesh that uses the material
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

// Per slot (in kMaterialSlots order), what a mesh makes of it: the "texCoord"
// of the slot's UV map among the mesh's UV sets, or one of these.
inline constexpr std::int32_t kSlotEmpty = -1;    // the material has no texture there
inline constexpr std::int32_t kSlotNoUvSet = -2;  // the mesh has no UV set at all: the texture is left out
using SlotCoords = std::array<std::int32_t, 5>;

// The slots' "texCoord"s on a mesh whose TEXCOORD_n is `uvSets[n]`. A UV map
// the mesh lacks (or a texture without one) reads set 0; its name goes to
// `missing` once.
SlotCoords slotTexCoords(const MaterialSlots& slots, const std::vector<std::string>& uvSets,
                         std::vector<std::string>& missing);

// Copies the filled slots into the material's texture keys with their
// "texCoord"s; slots marked kSlotEmpty or kSlotNoUvSet stay out.
void applySlots(GltfMaterialDesc& material, const MaterialSlots& slots, const SlotCoords& coords);
