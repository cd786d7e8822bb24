// Texture slots by effect, the swizzle and same-image warnings word for word,
// texture names and sampler wrap modes.
#include <gtest/gtest.h>

#include <string>

#include "export/material/texture_record.h"
#include "export/material/texture_slots.h"
#include "log_capture.h"

namespace {

const std::string kMismatch = " Vexo preview render and external preview results possibly wont match.";

SlotTexture texture(std::uint32_t index, const std::string& file) {
  SlotTexture t;
  t.index = index;
  t.imageFile = file;
  return t;
}

std::vector<std::string> attach(MaterialSlots& slots, const char* effect, const SlotTexture& t, Swizzle swizzle) {
  LogCapture capture;
  attachTexture(slots, effect, "Map (Image)", t, swizzle, capture.log());
  return capture.lines();
}

TEST(TextureSlots, EachEffectFillsItsSlotAndChecksItsSwizzle) {
  struct Case {
    const char* effect;
    SlotTexture MaterialSlots::*slot;  // null: checked only
    std::int32_t required;             // -1: no rule
    const char* label;
    const char* channel;
  };
  const Case cases[] = {
      {"normalGLTF", &MaterialSlots::normal, -1, nullptr, nullptr},
      {"emisGLTF", &MaterialSlots::emissive, -1, nullptr, nullptr},
      {"aoGLTF", &MaterialSlots::occlusion, 3, "GLTF_AmbientOclussion", "Red"},
      {"roughnessGLTF", &MaterialSlots::metallicRoughness, 4, "GLTF_Roughness", "Green"},
      {"baseColorGLTF", &MaterialSlots::baseColor, 0, "GLTF_BaseColor", "RGB"},
      {"dissolve", nullptr, 2, "Dissolve", "Alpha"},
      {"metallicGLTF", &MaterialSlots::metallicRoughness, 5, "GLTF_Metallic", "Blue"},
  };
  for (const Case& c : cases) {
    const std::string off =
        std::string("warning:     Swizzling is not turned on for ") + (c.label ? c.label : "") + " image map Map (Image)." + kMismatch;
    const std::string wrong = std::string("warning:     Swizzling channel must be '") + (c.channel ? c.channel : "") +
                              "' for " + (c.label ? c.label : "") + " image map Map (Image)." + kMismatch;
    for (const std::int32_t code : {0, 2, 3, 4, 5, 7}) {
      MaterialSlots slots;
      const std::vector<std::string> lines = attach(slots, c.effect, texture(4, "a.png"), {1, code});
      const bool warns = c.required >= 0 && code != c.required;
      EXPECT_EQ(lines, warns ? std::vector<std::string>{wrong} : std::vector<std::string>{}) << c.effect << code;
      for (SlotTexture MaterialSlots::*member : kMaterialSlots)
        EXPECT_EQ((slots.*member).index, member == c.slot ? 4u : GltfDocument::kNone) << c.effect;
    }
    MaterialSlots slots;
    const std::vector<std::string> lines = attach(slots, c.effect, texture(4, "a.png"), {0, c.required});
    EXPECT_EQ(lines, c.required >= 0 ? std::vector<std::string>{off} : std::vector<std::string>{}) << c.effect;
  }
}

TEST(TextureSlots, SharedImageRulesWarnOnlyForTheSecondOfTwoFiles) {
  const Swizzle red{1, 3}, green{1, 4}, blue{1, 5}, rgb{1, 0}, alpha{1, 2};
  const std::string roughness =
      "warning:     GLTF_Metallic and GLTF_Roughness image maps in one material group must use the same image. "
      "GLTF_Roughness image map :Map (Image)." + kMismatch;
  const std::string metallic =
      "warning:     GLTF_Metallic and GLTF_Roughness image maps in one material group must use the same image. "
      "GLTF_Metallic image map :Map (Image)." + kMismatch;
  const std::string occlusion =
      "warning:     GLTF_Metallic, GLTF_Roughness and GLTF_AmbientOclussion image maps in one material group should "
      "use the same image. GLTF_AmbientOclussion image map :Map (Image). If they share the same image file "
      "resulting export file will be smaller in size.";
  const std::string dissolve =
      "warning:     Dissolve and GLTF_BaseColor image maps in one material group must use the same image. Dissolve "
      "image map :Map (Image)." + kMismatch;
  struct Case {
    const char* first;
    Swizzle firstSwizzle;
    const char* second;
    Swizzle secondSwizzle;
    std::string warning;
  };
  const Case cases[] = {
      {"metallicGLTF", blue, "roughnessGLTF", green, roughness},
      {"roughnessGLTF", green, "metallicGLTF", blue, metallic},
      {"metallicGLTF", blue, "aoGLTF", red, occlusion},
      {"baseColorGLTF", rgb, "dissolve", alpha, dissolve},
  };
  for (const Case& c : cases) {
    MaterialSlots slots;
    EXPECT_TRUE(attach(slots, c.first, texture(1, "/maps/one.png"), c.firstSwizzle).empty()) << c.first;
    EXPECT_TRUE(attach(slots, c.second, texture(2, "/maps/one.png"), c.secondSwizzle).empty()) << c.second;
    EXPECT_EQ(attach(slots, c.second, texture(3, "/maps/two.png"), c.secondSwizzle),
              std::vector<std::string>{c.warning})
        << c.second;
  }
  // Occlusion and dissolve do not count as the other's image.
  MaterialSlots slots;
  attach(slots, "aoGLTF", texture(1, "/maps/one.png"), red);
  EXPECT_TRUE(attach(slots, "roughnessGLTF", texture(2, "/maps/two.png"), green).empty());
  EXPECT_EQ(slots.metallicRoughness.index, 2u);
}

TEST(TextureSlots, EachMeshPlacesTheSlotsOnItsOwnUvSets) {
  MaterialSlots slots;
  slots.baseColor = texture(5, "b.png");
  slots.baseColor.uvMap = "Texture";
  slots.normal = texture(3, "n.png");
  slots.normal.uvMap = "Decal";
  slots.emissive = texture(7, "e.png");  // projected without a UV map
  struct Case {
    std::vector<std::string> uvSets;
    SlotCoords coords;
    std::vector<std::string> missing;
  };
  const Case cases[] = {
      {{"Decal", "Texture"}, {1, kSlotEmpty, 0, kSlotEmpty, 0}, {}},
      {{"Texture", "Decal"}, {0, kSlotEmpty, 1, kSlotEmpty, 0}, {}},
      {{"Other"}, {0, kSlotEmpty, 0, kSlotEmpty, 0}, {"Texture", "Decal"}},
      {{}, {kSlotNoUvSet, kSlotEmpty, kSlotNoUvSet, kSlotEmpty, kSlotNoUvSet}, {"Texture", "Decal"}},
  };
  for (const Case& c : cases) {
    std::vector<std::string> missing;
    EXPECT_EQ(slotTexCoords(slots, c.uvSets, missing), c.coords);
    EXPECT_EQ(missing, c.missing);
  }

  GltfMaterialDesc material;
  material.occlusionTexture.index = 9;  // left from an earlier use: cleared
  applySlots(material, slots, {1, kSlotEmpty, 0, kSlotEmpty, kSlotNoUvSet});
  EXPECT_EQ(material.baseColorTexture.index, 5u);
  EXPECT_EQ(material.baseColorTexture.texCoord, 1u);
  EXPECT_EQ(material.normalTexture.index, 3u);
  EXPECT_EQ(material.normalTexture.texCoord, 0u);
  EXPECT_EQ(material.emissiveTexture.index, GltfDocument::kNone);
  EXPECT_EQ(material.occlusionTexture.index, GltfDocument::kNone);
  EXPECT_EQ(material.metallicRoughnessTexture.index, GltfDocument::kNone);
}

TEST(TextureRecord, NamesLoseTheirFirstImageMarkOnly) {
  const std::pair<const char*, const char*> cases[] = {
      {"brick.png (Image)", "brick.png "},
      {"(Image)wall(Image)", "wall(Image)"},
      {"Plain", "Plain"},
      {"(image) lower", "(image) lower"},
      {"(Image", "(Image"},
  };
  for (const auto& [layer, name] : cases) EXPECT_EQ(textureName(layer), name) << layer;
}

TEST(TextureRecord, TileModesBecomeWrapCodes) {
  EXPECT_EQ(wrapMode(0), 33071u);
  EXPECT_EQ(wrapMode(1), 10497u);
  EXPECT_EQ(wrapMode(2), 33648u);
  EXPECT_EQ(wrapMode(3), 10497u);
  EXPECT_EQ(wrapMode(-1), 10497u);
  EXPECT_EQ(wrapMode(9), 10497u);
}

}  // namespace
