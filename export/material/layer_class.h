// Shader-tree layers sorted into the families and kinds the material export
// acts on. Plain values: the host reads are done by the caller.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

enum class ShaderFamily : std::int32_t { None = 0, Vexo = 1, Unreal = 2, Unity = 3, Gltf = 4 };
enum class LayerKind : std::int32_t { None = 0, Mask = 1, Material = 2, ImageMap = 3, Other = 4 };

// The layer types the classifier tells apart, in the order it tests them.
enum class LayerType { Mask, VexoMaterial, UnityShader, UnrealShader, GltfShader, ImageMap, Other };

// One table of image-map effect names and the family it stands for.
struct EffectTable {
  ShaderFamily family;
  bool recordsMatch;  // the layer keeps the matched name for the walk
  const char* const* names;
  std::size_t count;
};

// The four tables, in the order an effect is looked up.
extern const EffectTable kEffectTables[4];

struct EffectMatch {
  ShaderFamily family = ShaderFamily::Vexo;  // an effect in no table counts as Vexo's
  const char* matched = nullptr;             // the table's entry, for the Vexo and glTF tables
};
EffectMatch matchEffect(const std::string& effect);

// An opaque reference to a layer, owned by whoever walks the tree.
using LayerId = const void*;

// What the host says about a layer, read before classification.
struct LayerFacts {
  LayerId layer = nullptr;  // null: the layer could not be opened
  LayerType type = LayerType::Other;
  std::string name;
  bool enabled = false;
  std::string effect;  // image maps only
};

struct LayerRecord {
  LayerId layer = nullptr;
  std::string name;
  ShaderFamily family = ShaderFamily::None;
  LayerKind kind = LayerKind::None;
  bool valid = false;
  bool enabled = false;
  std::string effect;
  const char* matchedEffect = nullptr;
};

LayerRecord classifyLayer(const LayerFacts& facts);
