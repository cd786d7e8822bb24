#include "shader_walk.h"

#include <cstdint>
#include <deque>

namespace {

void putTexture(MaskWalk& walk, const std::string& effect, LayerId layer) {
  for (auto& entry : walk.textures) {
    if (entry.first == effect) {
      entry.second = layer;
      return;
    }
  }
  walk.textures.emplace_back(effect, layer);
}

}  // namespace

MaskWalk walkMask(ShaderLayers& layers, LayerId mask, GltfLogMsg& log) {
  MaskWalk walk;
  std::deque<LayerRecord> stack;
  stack.push_back(layers.classify(mask));
  std::uint32_t gltfMaterialIndex = 0;

  while (!stack.empty()) {
    const LayerRecord record = std::move(stack.back());
    stack.pop_back();
    if (!record.valid || !record.enabled) continue;
    const char* name = record.name.c_str();

    switch (record.family) {
      case ShaderFamily::Gltf:
        if (record.kind == LayerKind::Material) {
          walk.gltfMaterials.push_back(record.layer);
        } else if (record.kind == LayerKind::ImageMap) {
          if (record.matchedEffect) {
            putTexture(walk, record.matchedEffect, record.layer);
          } else if (record.effect == "layerMask") {
            log.info("    Skipping layer mask %s", name);
          } else {
            log.warning("    Unsupported layer effect %s for %s", record.effect.c_str(), name);
          }
        }
        log.info("    Skipping Gltf shader layer %s", name);
        break;
      case ShaderFamily::Unity:
        log.info("    Skipping Unity shader layer %s", name);
        break;
      case ShaderFamily::Unreal:
        log.info("    Skipping Unreal shader layer %s", name);
        break;
      case ShaderFamily::Vexo:
        if (record.kind == LayerKind::Mask) {
          const unsigned count = layers.childCount(record.layer);
          for (unsigned i = count; i-- > 0;) {
            LayerRecord child = layers.classify(layers.child(record.layer, i));
            if (child.valid && child.enabled && child.kind == LayerKind::Material) {
              if (child.family == ShaderFamily::Gltf) {
                gltfMaterialIndex = i;
              } else if (child.family == ShaderFamily::Vexo) {
                if (walk.vexoMaterial) {
                  log.warning(
                      "    Found multiple Vexo materials in glTF layer '%s' only the first Vexo material under the "
                      "glTF material in the shader tree will be used for transparency!",
                      name);
                } else if (i > gltfMaterialIndex) {
                  log.warning(
                      "    Vexo material in glTF layer '%s' must be placed below glTF material in the shader tree!",
                      name);
                } else {
                  walk.vexoMaterial = child.layer;
                }
              }
            }
            stack.push_back(std::move(child));
          }
        } else if (record.kind == LayerKind::ImageMap && record.effect == "dissolve") {
          putTexture(walk, record.effect, record.layer);
        }
        break;
      default:
        log.warning("    Unsupported layer %s", name);
        break;
    }
  }
  return walk;
}
