// The walk under a mask: visit order, what is kept, every message it logs.
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "export/material/shader_walk.h"
#include "log_capture.h"

namespace {

// A shader tree of plain layers; children listed bottom (index 0) first.
struct Layer {
  std::string name;
  LayerType type = LayerType::Other;
  bool enabled = true;
  std::string effect;
  std::vector<Layer*> children;
};

class PlainLayers : public ShaderLayers {
 public:
  LayerRecord classify(LayerId id) override {
    const Layer* layer = static_cast<const Layer*>(id);
    LayerFacts facts;
    if (layer) facts = {id, layer->type, layer->name, layer->enabled, layer->effect};
    return classifyLayer(facts);
  }
  unsigned childCount(LayerId id) override {
    return static_cast<unsigned>(static_cast<const Layer*>(id)->children.size());
  }
  LayerId child(LayerId id, unsigned index) override { return static_cast<const Layer*>(id)->children[index]; }
};

struct Tree {
  std::deque<Layer> layers;  // stable addresses
  Layer& add(const std::string& name, LayerType type, const std::string& effect = "", bool enabled = true) {
    layers.push_back({name, type, enabled, effect, {}});
    return layers.back();
  }
};

struct Walk {
  LogCapture capture;
  MaskWalk result;
  void run(Layer& mask) {
    PlainLayers layers;
    result = walkMask(layers, &mask, capture.log());
  }
  const std::vector<std::string>& lines() const { return capture.lines(); }
};

const std::string kSkipGltf = "info:     Skipping Gltf shader layer ";

TEST(ShaderWalk, VisitsFromTheBottomOfEachStackAndNamesEveryGltfLayer) {
  Tree t;
  Layer& mask = t.add("Body", LayerType::Mask);
  Layer& base = t.add("Base", LayerType::ImageMap, "baseColorGLTF");
  Layer& material = t.add("Material", LayerType::GltfShader);
  Layer& unity = t.add("U", LayerType::UnityShader);
  Layer& unreal = t.add("E", LayerType::ImageMap, "roughUE");
  Layer& diffuse = t.add("Diffuse", LayerType::ImageMap, "diffColor");
  Layer& layerMask = t.add("Cut", LayerType::ImageMap, "layerMask");
  Layer& odd = t.add("Odd", LayerType::ImageMap, "rough");
  Layer& inner = t.add("Inner", LayerType::Mask);
  Layer& unknown = t.add("Strange", LayerType::ImageMap, "sheenGLTF");
  inner.children = {&unknown, &odd};
  mask.children = {&material, &base, &unity, &unreal, &inner, &diffuse, &layerMask};
  // Effects in no table ("layerMask", "sheenGLTF") count as Vexo's, and Vexo
  // image maps other than "dissolve" pass without a word.
  Walk walk;
  walk.run(mask);
  const std::vector<std::string> expected = {
      kSkipGltf + "Material",
      kSkipGltf + "Base",
      "info:     Skipping Unity shader layer U",
      "info:     Skipping Unreal shader layer E",
  };
  EXPECT_EQ(walk.lines(), expected);
  ASSERT_EQ(walk.result.gltfMaterials.size(), 1u);
  EXPECT_EQ(walk.result.gltfMaterials[0], &material);
  ASSERT_EQ(walk.result.textures.size(), 1u);
  EXPECT_EQ(walk.result.textures[0].first, "baseColorGLTF");
  EXPECT_EQ(walk.result.textures[0].second, &base);
}

TEST(ShaderWalk, ALayerMaskImageMapPassesSilently) {
  Tree t;
  Layer& mask = t.add("Body", LayerType::Mask);
  Layer& cut = t.add("Cut", LayerType::ImageMap, "layerMask");
  Layer& material = t.add("Material", LayerType::GltfShader);
  mask.children = {&material, &cut};
  Walk walk;
  walk.run(mask);
  EXPECT_EQ(walk.lines(), std::vector<std::string>{kSkipGltf + "Material"});
}

TEST(ShaderWalk, DisabledLayersAndMasksAreSkippedSilently) {
  Tree t;
  Layer& mask = t.add("Body", LayerType::Mask);
  Layer& off = t.add("Off", LayerType::Mask, "", false);
  Layer& hidden = t.add("Hidden", LayerType::GltfShader);
  Layer& material = t.add("Material", LayerType::GltfShader, "", false);
  Layer& unity = t.add("U", LayerType::UnityShader, "", false);
  off.children = {&hidden};
  mask.children = {&material, &off, &unity};
  Walk walk;
  walk.run(mask);
  EXPECT_TRUE(walk.lines().empty());
  EXPECT_TRUE(walk.result.gltfMaterials.empty());

  Layer& offMask = t.add("Root", LayerType::Mask, "", false);
  offMask.children = {&hidden};
  Walk second;
  second.run(offMask);
  EXPECT_TRUE(second.lines().empty());
  EXPECT_TRUE(second.result.gltfMaterials.empty());
}

TEST(ShaderWalk, TwoGltfMaterialsAreBothListedBottomFirst) {
  Tree t;
  Layer& mask = t.add("Body", LayerType::Mask);
  Layer& low = t.add("Low", LayerType::GltfShader);
  Layer& high = t.add("High", LayerType::GltfShader);
  mask.children = {&low, &high};
  Walk walk;
  walk.run(mask);
  EXPECT_EQ(walk.result.gltfMaterials, (std::vector<LayerId>{&low, &high}));
  EXPECT_EQ(walk.lines(), (std::vector<std::string>{kSkipGltf + "Low", kSkipGltf + "High"}));
}

TEST(ShaderWalk, VexoMaterialPlacement) {
  const std::string below =
      "warning:     Vexo material in glTF layer 'Body' must be placed below glTF material in the shader tree!";
  const std::string multiple =
      "warning:     Found multiple Vexo materials in glTF layer 'Body' only the first Vexo material under the glTF "
      "material in the shader tree will be used for transparency!";
  struct Case {
    const char* what;
    std::vector<int> order;  // bottom first: 0 glTF material, 1 and 2 Vexo materials, 3 a disabled Vexo material
    int chosen;              // index into the Vexo materials, -1 none
    std::vector<std::string> warnings;
  };
  const std::vector<Case> cases = {
      {"below", {1, 0}, 1, {}},
      {"above", {0, 1}, -1, {below}},
      {"two below: the upper one is taken", {1, 2, 0}, 2, {multiple}},
      {"one below, one above: the one above is met first", {1, 0, 2}, 1, {below}},
      {"above, with a disabled one below it", {0, 1}, -1, {below}},
      {"a disabled one does not count", {3, 1, 0}, 1, {}},
      {"no glTF material: index 0 is the limit", {1, 2}, 1, {below}},
  };
  for (const Case& c : cases) {
    Tree t;
    Layer& mask = t.add("Body", LayerType::Mask);
    Layer* layers[] = {&t.add("Material", LayerType::GltfShader), &t.add("V1", LayerType::VexoMaterial),
                       &t.add("V2", LayerType::VexoMaterial), &t.add("V3", LayerType::VexoMaterial, "", false)};
    for (int i : c.order) mask.children.push_back(layers[i]);
    Walk walk;
    walk.run(mask);
    EXPECT_EQ(walk.result.vexoMaterial, c.chosen < 0 ? nullptr : layers[c.chosen]) << c.what;
    std::vector<std::string> warnings;
    for (const std::string& line : walk.lines())
      if (line.rfind("warning:", 0) == 0) warnings.push_back(line);
    EXPECT_EQ(warnings, c.warnings) << c.what;
  }
}

TEST(ShaderWalk, DissolveIsTheOnlyVexoEffectKeptAndALaterMapOfAnEffectReplacesItsEntry) {
  Tree t;
  Layer& mask = t.add("Body", LayerType::Mask);
  Layer& material = t.add("Material", LayerType::GltfShader);
  Layer& dissolve = t.add("Fade", LayerType::ImageMap, "dissolve");
  Layer& diffuse = t.add("Diffuse", LayerType::ImageMap, "diffColor");
  Layer& normalLow = t.add("N1", LayerType::ImageMap, "normalGLTF");
  Layer& emission = t.add("Glow", LayerType::ImageMap, "emisGLTF");
  Layer& normalHigh = t.add("N2", LayerType::ImageMap, "normalGLTF");
  mask.children = {&material, &normalLow, &dissolve, &diffuse, &emission, &normalHigh};
  Walk walk;
  walk.run(mask);
  const std::vector<std::pair<std::string, LayerId>> expected = {
      {"normalGLTF", &normalHigh}, {"dissolve", &dissolve}, {"emisGLTF", &emission}};
  EXPECT_EQ(walk.result.textures, expected);
}

}  // namespace
