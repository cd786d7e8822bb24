#include "layer_class.h"

#include <iterator>

namespace {

const char* const kVexoEffects[] = {"lumiColor", "lumiAmount", "diffColor", "diffAmount", "specColor", "specAmount",
                                    "rough",     "reflColor",  "reflAmount", "tranColor", "tranAmount", "dissolve",
                                    "bump",      "normal",     "displace",   "vectorDisplace"};
const char* const kUnityEffects[] = {"metallicUT", "albedoUT", "smoothUT",     "emisUT",    "normalUT",
                                     "bumpUT",     "aoUT",     "detailMaskUT", "albedo2UT", "normal2UT"};
const char* const kUnrealEffects[] = {"metallicUE", "baseUE", "roughUE", "specUE", "emisUE", "normalUE",
                                      "bumpUE",     "aoUE",   "sssUE",   "ccUE",   "ccrUE",  "opacUE"};
const char* const kGltfEffects[] = {"metallicGLTF", "baseColorGLTF", "roughnessGLTF",
                                    "emisGLTF",     "normalGLTF",    "aoGLTF"};

// Family and kind of each layer type; image maps take their family from the effect.
struct TypeClass {
  LayerType type;
  ShaderFamily family;
  LayerKind kind;
};
constexpr TypeClass kTypeClasses[] = {
    {LayerType::Mask, ShaderFamily::Vexo, LayerKind::Mask},
    {LayerType::VexoMaterial, ShaderFamily::Vexo, LayerKind::Material},
    {LayerType::UnityShader, ShaderFamily::Unity, LayerKind::Material},
    {LayerType::UnrealShader, ShaderFamily::Unreal, LayerKind::Material},
    {LayerType::GltfShader, ShaderFamily::Gltf, LayerKind::Material},
    {LayerType::ImageMap, ShaderFamily::Vexo, LayerKind::ImageMap},
    {LayerType::Other, ShaderFamily::Vexo, LayerKind::Other},
};

}  // namespace

const EffectTable kEffectTables[4] = {
    {ShaderFamily::Vexo, true, kVexoEffects, std::size(kVexoEffects)},
    {ShaderFamily::Unity, false, kUnityEffects, std::size(kUnityEffects)},
    {ShaderFamily::Unreal, false, kUnrealEffects, std::size(kUnrealEffects)},
    {ShaderFamily::Gltf, true, kGltfEffects, std::size(kGltfEffects)},
};

EffectMatch matchEffect(const std::string& effect) {
  for (const EffectTable& table : kEffectTables) {
    for (std::size_t i = 0; i < table.count; ++i) {
      if (effect != table.names[i]) continue;
      EffectMatch match;
      match.family = table.family;
      if (table.recordsMatch) match.matched = table.names[i];
      return match;
    }
  }
  return EffectMatch();
}

LayerRecord classifyLayer(const LayerFacts& facts) {
  LayerRecord record;
  record.layer = facts.layer;
  if (!facts.layer) return record;
  record.valid = true;
  record.name = facts.name;
  record.enabled = facts.enabled;
  for (const TypeClass& entry : kTypeClasses) {
    if (entry.type != facts.type) continue;
    record.family = entry.family;
    record.kind = entry.kind;
    break;
  }
  if (record.kind == LayerKind::ImageMap) {
    record.effect = facts.effect;
    const EffectMatch match = matchEffect(facts.effect);
    record.family = match.family;
    record.matchedEffect = match.matched;
  }
  return record;
}
