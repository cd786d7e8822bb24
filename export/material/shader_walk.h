// The walk over the layers under one polygon tag's mask: which glTF material
// layers, which Vexo material and which image maps make its material.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/gltf_log_msg.h"
#include "layer_class.h"

// The shader tree as the walk sees it.
class ShaderLayers {
 public:
  virtual ~ShaderLayers() = default;
  virtual LayerRecord classify(LayerId layer) = 0;
  virtual unsigned childCount(LayerId layer) = 0;
  // Child 0 is the bottom of the layer's stack.
  virtual LayerId child(LayerId layer, unsigned index) = 0;
};

struct MaskWalk {
  std::vector<LayerId> gltfMaterials;  // in visit order; the first one is used
  LayerId vexoMaterial = nullptr;      // chosen for transparency and double-sidedness
  // Effect name -> image-map layer, in order of first insertion; a later layer
  // of the same effect takes the entry's place.
  std::vector<std::pair<std::string, LayerId>> textures;
};

// Walks the mask and every enabled layer below it, logging what is skipped
// or unsupported and warning about misplaced Vexo materials.
MaskWalk walkMask(ShaderLayers& layers, LayerId mask, GltfLogMsg& log);
