// A material's numbers from its glTF material layer and its Vexo material.
#pragma once

#include <cstdint>

#include "core/gltf_log_msg.h"
#include "gltf/document.h"

// A layer's channels by name; a read that fails leaves the value as it was.
class LayerChannels {
 public:
  virtual ~LayerChannels() = default;
  virtual bool real(const char* channel, double& value) = 0;
  virtual bool integer(const char* channel, std::int32_t& value) = 0;
};

// Base colour, shading model (unlit stops the read), metallic, roughness,
// emission and its level, normal scale and occlusion strength.
void readGltfMaterialLayer(GltfMaterialDesc& material, LayerChannels& channels, GltfLogMsg& log);

// Alpha = 1 - "dissAmt" clamped to [0, 1] (BLEND below 1) and "dblSided".
void readVexoMaterialLayer(GltfMaterialDesc& material, LayerChannels& channels);
