// Layer classification: family and kind per layer type, image maps by their
// effect in the four tables.
#include <gtest/gtest.h>

#include <cstring>

#include "export/material/layer_class.h"

namespace {

const int kLayer = 0;

LayerRecord classify(LayerType type, const std::string& effect = "", bool enabled = true) {
  LayerFacts facts;
  facts.layer = &kLayer;
  facts.type = type;
  facts.name = "Layer";
  facts.enabled = enabled;
  facts.effect = effect;
  return classifyLayer(facts);
}

TEST(LayerClass, EachLayerTypeHasItsFamilyAndKind) {
  struct Case {
    LayerType type;
    ShaderFamily family;
    LayerKind kind;
  };
  const Case cases[] = {
      {LayerType::Mask, ShaderFamily::Vexo, LayerKind::Mask},
      {LayerType::VexoMaterial, ShaderFamily::Vexo, LayerKind::Material},
      {LayerType::UnityShader, ShaderFamily::Unity, LayerKind::Material},
      {LayerType::UnrealShader, ShaderFamily::Unreal, LayerKind::Material},
      {LayerType::GltfShader, ShaderFamily::Gltf, LayerKind::Material},
      {LayerType::Other, ShaderFamily::Vexo, LayerKind::Other},
  };
  for (const Case& c : cases) {
    const LayerRecord record = classify(c.type);
    EXPECT_EQ(record.family, c.family) << static_cast<int>(c.type);
    EXPECT_EQ(record.kind, c.kind) << static_cast<int>(c.type);
    EXPECT_TRUE(record.valid);
    EXPECT_EQ(record.matchedEffect, nullptr);
  }
}

TEST(LayerClass, ImageMapsTakeTheFamilyOfTheirEffectAndKeepOnlyVexoAndGltfMatches) {
  struct Case {
    const char* effect;
    ShaderFamily family;
    bool matched;
  };
  const Case cases[] = {
      {"dissolve", ShaderFamily::Vexo, true},      {"vectorDisplace", ShaderFamily::Vexo, true},
      {"albedoUT", ShaderFamily::Unity, false},    {"normal2UT", ShaderFamily::Unity, false},
      {"baseUE", ShaderFamily::Unreal, false},     {"opacUE", ShaderFamily::Unreal, false},
      {"baseColorGLTF", ShaderFamily::Gltf, true}, {"aoGLTF", ShaderFamily::Gltf, true},
      {"layerMask", ShaderFamily::Vexo, false},    {"", ShaderFamily::Vexo, false},
      {"aoGltf", ShaderFamily::Vexo, false},
  };
  for (const Case& c : cases) {
    const LayerRecord record = classify(LayerType::ImageMap, c.effect);
    EXPECT_EQ(record.kind, LayerKind::ImageMap) << c.effect;
    EXPECT_EQ(record.family, c.family) << c.effect;
    EXPECT_EQ(record.effect, c.effect);
    if (c.matched) {
      ASSERT_NE(record.matchedEffect, nullptr) << c.effect;
      EXPECT_STREQ(record.matchedEffect, c.effect);
    } else {
      EXPECT_EQ(record.matchedEffect, nullptr) << c.effect;
    }
  }
}

TEST(LayerClass, OnlyImageMapsReadAnEffect) {
  EXPECT_EQ(classify(LayerType::GltfShader, "aoGLTF").matchedEffect, nullptr);
  EXPECT_EQ(classify(LayerType::GltfShader, "aoGLTF").family, ShaderFamily::Gltf);
}

TEST(LayerClass, ALayerThatCannotBeOpenedStaysInvalidWithNoFamily) {
  LayerFacts facts;
  facts.type = LayerType::GltfShader;
  facts.enabled = true;
  const LayerRecord record = classifyLayer(facts);
  EXPECT_FALSE(record.valid);
  EXPECT_FALSE(record.enabled);
  EXPECT_EQ(record.family, ShaderFamily::None);
  EXPECT_EQ(record.kind, LayerKind::None);
}

TEST(LayerClass, TheEnableSwitchIsCarriedOver) { EXPECT_FALSE(classify(LayerType::Mask, "", false).enabled); }

TEST(LayerClass, TheTablesHoldEachEffectOnceInTheirLookupOrder) {
  const ShaderFamily order[] = {ShaderFamily::Vexo, ShaderFamily::Unity, ShaderFamily::Unreal, ShaderFamily::Gltf};
  const std::size_t sizes[] = {16, 10, 12, 6};
  for (int t = 0; t < 4; ++t) {
    EXPECT_EQ(kEffectTables[t].family, order[t]);
    EXPECT_EQ(kEffectTables[t].count, sizes[t]);
    for (std::size_t i = 0; i < kEffectTables[t].count; ++i)
      EXPECT_EQ(matchEffect(kEffectTables[t].names[i]).family, order[t]) << kEffectTables[t].names[i];
  }
}

}  // namespace
