// Material numbers from the glTF material layer and the Vexo material.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "export/material/material_params.h"
#include "log_capture.h"

namespace {

class PlainChannels : public LayerChannels {
 public:
  std::map<std::string, double> values;
  std::vector<std::string> reads;
  bool real(const char* channel, double& value) override { return read(channel, value); }
  bool integer(const char* channel, std::int32_t& value) override {
    double v = 0;
    if (!read(channel, v)) return false;
    value = static_cast<std::int32_t>(v);
    return true;
  }

 private:
  bool read(const char* channel, double& value) {
    reads.push_back(channel);
    const auto found = values.find(channel);
    if (found == values.end()) return false;
    value = found->second;
    return true;
  }
};

GltfMaterialDesc named(const char* name) {
  GltfMaterialDesc material;
  material.name = name;
  return material;
}

TEST(MaterialParams, TheGltfLayerFillsEveryFactor) {
  LogCapture capture;
  PlainChannels channels;
  channels.values = {{"baseColor.R", 0.25}, {"baseColor.G", 0.5}, {"baseColor.B", 0.75}, {"metallic", 0.1},
                     {"roughness", 0.6},    {"emissive.R", 1.0},  {"emissive.G", 0.5},   {"emissive.B", 0.0},
                     {"emissivelevel", 3},  {"normalscale", 0.4}, {"aoscale", 0.8},      {"shadeModel", 0}};
  GltfMaterialDesc m = named("Body");
  readGltfMaterialLayer(m, channels, capture.log());
  EXPECT_EQ(m.baseColorFactor[0], 0.25);
  EXPECT_EQ(m.baseColorFactor[1], 0.5);
  EXPECT_EQ(m.baseColorFactor[2], 0.75);
  EXPECT_EQ(m.baseColorFactor[3], 1.0);
  EXPECT_EQ(m.metallicFactor, 0.1f);
  EXPECT_EQ(m.roughnessFactor, 0.6f);
  EXPECT_EQ(m.emissiveFactor[0], 3.0);  // the level may lift it above 1
  EXPECT_EQ(m.emissiveFactor[1], 1.5);
  EXPECT_EQ(m.emissiveFactor[2], 0.0);
  EXPECT_EQ(m.normalScale, 0.4);
  EXPECT_EQ(m.occlusionStrength, 0.8);
  EXPECT_FALSE(m.unlit);
  EXPECT_TRUE(capture.lines().empty());
}

TEST(MaterialParams, MissingChannelsKeepTheDefaultsAndLevelZeroDarkensTheEmission) {
  LogCapture capture;
  PlainChannels channels;
  GltfMaterialDesc m = named("Body");
  readGltfMaterialLayer(m, channels, capture.log());
  EXPECT_EQ(m.metallicFactor, 1.0f);
  EXPECT_EQ(m.roughnessFactor, 1.0f);
  EXPECT_EQ(m.normalScale, 1.0);
  EXPECT_EQ(m.occlusionStrength, 1.0);
  EXPECT_EQ(m.baseColorFactor[0], 1.0);

  channels.values = {{"emissive.R", 1.0}, {"emissive.G", 1.0}, {"emissive.B", 1.0}, {"emissivelevel", 0.0}};
  readGltfMaterialLayer(m, channels, capture.log());
  EXPECT_EQ(m.emissiveFactor[0] + m.emissiveFactor[1] + m.emissiveFactor[2], 0.0);
}

TEST(MaterialParams, UnlitStopsTheReadWithOneWarning) {
  LogCapture capture;
  PlainChannels channels;
  channels.values = {{"baseColor.R", 0.2}, {"shadeModel", 1},  {"metallic", 0.9},   {"roughness", 0.1},
                     {"emissive.R", 1.0},  {"normalscale", 2}, {"aoscale", 0.3}};
  GltfMaterialDesc m = named("Flat");
  m.emissiveFactor[1] = 0.5;
  readGltfMaterialLayer(m, channels, capture.log());
  EXPECT_TRUE(m.unlit);
  EXPECT_EQ(m.baseColorFactor[0], 0.2);
  EXPECT_EQ(m.metallicFactor, 0.0f);
  EXPECT_EQ(m.roughnessFactor, 1.0f);
  EXPECT_EQ(m.emissiveFactor[0] + m.emissiveFactor[1] + m.emissiveFactor[2], 0.0);
  EXPECT_EQ(m.normalScale, 1.0);
  EXPECT_EQ(m.occlusionStrength, 1.0);
  EXPECT_EQ(channels.reads.back(), "shadeModel");
  EXPECT_EQ(capture.lines(), std::vector<std::string>{
                                 "warning: Material 'Flat' uses glTF Unlit shader extension. At the point of making "
                                 "this warning Unlit extension is not fully ratified and could change at any point."});
  EXPECT_EQ(capture.log().warnings(), 1u);
}

TEST(MaterialParams, DissolveAmountBecomesAlphaClampedAndBlendBelowOne) {
  struct Case {
    double dissolve;
    double alpha;
    std::uint32_t mode;
  };
  const Case cases[] = {{0.0, 1.0, 0}, {0.25, 0.75, 2}, {-0.5, 1.0, 0}, {1.5, 0.0, 2}, {1.0, 0.0, 2}};
  for (const Case& c : cases) {
    PlainChannels channels;
    channels.values = {{"dissAmt", c.dissolve}};
    GltfMaterialDesc m = named("Glass");
    readVexoMaterialLayer(m, channels);
    EXPECT_EQ(m.baseColorFactor[3], c.alpha) << c.dissolve;
    EXPECT_EQ(m.alphaMode, c.mode) << c.dissolve;
    EXPECT_EQ(m.alphaCutoff, 0.5f);
    EXPECT_FALSE(m.doubleSided);
  }
}

TEST(MaterialParams, DoubleSidedFollowsTheSwitch) {
  for (const double value : {0.0, 1.0, 2.0}) {
    PlainChannels channels;
    channels.values = {{"dblSided", value}};
    GltfMaterialDesc m = named("Leaf");
    readVexoMaterialLayer(m, channels);
    EXPECT_EQ(m.doubleSided, value != 0.0);
    EXPECT_EQ(m.alphaMode, 0u);
  }
}

}  // namespace
