#include "texture_slots.h"

#include <algorithm>

namespace {

constexpr std::int32_t kNoRule = -1;

// One row per effect: its slot (null: checked only), the "rgba" code it needs,
// the slot whose image it must share, and the messages of each check.
struct SlotRule {
  const char* effect;
  SlotTexture MaterialSlots::*slot;
  std::int32_t swizzle;
  const char* swizzleOff;
  const char* swizzleWrong;
  SlotTexture MaterialSlots::*sameImageAs;
  const char* differentImage;
};

const SlotRule kSlotRules[] = {
    {"normalGLTF", &MaterialSlots::normal, kNoRule, nullptr, nullptr, nullptr, nullptr},
    {"emisGLTF", &MaterialSlots::emissive, kNoRule, nullptr, nullptr, nullptr, nullptr},
    {"aoGLTF", &MaterialSlots::occlusion, kSwizzleRed,
     "    Swizzling is not turned on for GLTF_AmbientOclussion image map %s. Vexo preview render and external "
     "preview results possibly wont match.",
     "    Swizzling channel must be 'Red' for GLTF_AmbientOclussion image map %s. Vexo preview render and external "
     "preview results possibly wont match.",
     &MaterialSlots::metallicRoughness,
     "    GLTF_Metallic, GLTF_Roughness and GLTF_AmbientOclussion image maps in one material group should use the "
     "same image. GLTF_AmbientOclussion image map :%s. If they share the same image file resulting export file "
     "will be smaller in size."},
    {"roughnessGLTF", &MaterialSlots::metallicRoughness, kSwizzleGreen,
     "    Swizzling is not turned on for GLTF_Roughness image map %s. Vexo preview render and external preview "
     "results possibly wont match.",
     "    Swizzling channel must be 'Green' for GLTF_Roughness image map %s. Vexo preview render and external "
     "preview results possibly wont match.",
     &MaterialSlots::metallicRoughness,
     "    GLTF_Metallic and GLTF_Roughness image maps in one material group must use the same image. "
     "GLTF_Roughness image map :%s. Vexo preview render and external preview results possibly wont match."},
    {"baseColorGLTF", &MaterialSlots::baseColor, kSwizzleRgb,
     "    Swizzling is not turned on for GLTF_BaseColor image map %s. Vexo preview render and external preview "
     "results possibly wont match.",
     "    Swizzling channel must be 'RGB' for GLTF_BaseColor image map %s. Vexo preview render and external "
     "preview results possibly wont match.",
     nullptr, nullptr},
    {"dissolve", nullptr, kSwizzleAlpha,
     "    Swizzling is not turned on for Dissolve image map %s. Vexo preview render and external preview results "
     "possibly wont match.",
     "    Swizzling channel must be 'Alpha' for Dissolve image map %s. Vexo preview render and external preview "
     "results possibly wont match.",
     &MaterialSlots::baseColor,
     "    Dissolve and GLTF_BaseColor image maps in one material group must use the same image. Dissolve image map "
     ":%s. Vexo preview render and external preview results possibly wont match."},
    {"metallicGLTF", &MaterialSlots::metallicRoughness, kSwizzleBlue,
     "    Swizzling is not turned on for GLTF_Metallic image map %s. Vexo preview render and external preview "
     "results possibly wont match.",
     "    Swizzling channel must be 'Blue' for GLTF_Metallic image map %s. Vexo preview render and external "
     "preview results possibly wont match.",
     &MaterialSlots::metallicRoughness,
     "    GLTF_Metallic and GLTF_Roughness image maps in one material group must use the same image. GLTF_Metallic "
     "image map :%s. Vexo preview render and external preview results possibly wont match."},
};

}  // namespace

SlotTexture MaterialSlots::* const kMaterialSlots[5] = {&MaterialSlots::baseColor, &MaterialSlots::metallicRoughness,
                                                        &MaterialSlots::normal, &MaterialSlots::occlusion,
                                                        &MaterialSlots::emissive};

void attachTexture(MaterialSlots& slots, const std::string& effect, const std::string& layerName,
                   const SlotTexture& texture, const Swizzle& swizzle, GltfLogMsg& log) {
  for (const SlotRule& rule : kSlotRules) {
    if (effect != rule.effect) continue;
    const char* name = layerName.c_str();
    if (rule.swizzle != kNoRule) {
      if (swizzle.on == 0) {
        log.warning(rule.swizzleOff, name);
      } else if (swizzle.rgba != rule.swizzle) {
        log.warning(rule.swizzleWrong, name);
      }
    }
    if (rule.sameImageAs) {
      const SlotTexture& other = slots.*rule.sameImageAs;
      if (other.index != GltfDocument::kNone && other.imageFile != texture.imageFile) {
        log.warning(rule.differentImage, name);
      }
    }
    if (rule.slot) slots.*rule.slot = texture;
    return;
  }
}

SlotCoords slotTexCoords(const MaterialSlots& slots, const std::vector<std::string>& uvSets,
                         std::vector<std::string>& missing) {
  SlotCoords coords;
  for (std::size_t i = 0; i < coords.size(); ++i) {
    const SlotTexture& slot = slots.*kMaterialSlots[i];
    if (slot.index == GltfDocument::kNone) {
      coords[i] = kSlotEmpty;
      continue;
    }
    const auto found = std::find(uvSets.begin(), uvSets.end(), slot.uvMap);
    if (found != uvSets.end()) {
      coords[i] = static_cast<std::int32_t>(found - uvSets.begin());
      continue;
    }
    coords[i] = uvSets.empty() ? kSlotNoUvSet : 0;
    if (!slot.uvMap.empty() && std::find(missing.begin(), missing.end(), slot.uvMap) == missing.end())
      missing.push_back(slot.uvMap);
  }
  return coords;
}

void applySlots(GltfMaterialDesc& material, const MaterialSlots& slots, const SlotCoords& coords) {
  GltfTextureRef GltfMaterialDesc::* const refs[5] = {
      &GltfMaterialDesc::baseColorTexture, &GltfMaterialDesc::metallicRoughnessTexture,
      &GltfMaterialDesc::normalTexture, &GltfMaterialDesc::occlusionTexture, &GltfMaterialDesc::emissiveTexture};
  for (std::size_t i = 0; i < coords.size(); ++i) {
    GltfTextureRef& ref = material.*refs[i];
    ref = GltfTextureRef();
    if (coords[i] < 0) continue;
    ref.index = (slots.*kMaterialSlots[i]).index;
    ref.texCoord = static_cast<std::uint32_t>(coords[i]);
  }
}
