#include "material_params.h"

#include <algorithm>

namespace {

constexpr std::int32_t kUnlit = 1;
constexpr std::uint32_t kAlphaBlend = 2;

void readReals(LayerChannels& channels, const char* const* names, double* values, int count) {
  for (int i = 0; i < count; ++i) channels.real(names[i], values[i]);
}

void readFloat(LayerChannels& channels, const char* name, float& value) {
  double read = value;
  if (channels.real(name, read)) value = static_cast<float>(read);
}

}  // namespace

void readGltfMaterialLayer(GltfMaterialDesc& material, LayerChannels& channels, GltfLogMsg& log) {
  static const char* const kBaseColor[] = {"baseColor.R", "baseColor.G", "baseColor.B"};
  static const char* const kEmissive[] = {"emissive.R", "emissive.G", "emissive.B"};
  readReals(channels, kBaseColor, material.baseColorFactor, 3);

  std::int32_t shadeModel = 0;
  if (channels.integer("shadeModel", shadeModel) && shadeModel == kUnlit) {
    material.unlit = true;
    material.metallicFactor = 0.0f;
    material.roughnessFactor = 1.0f;
    std::fill_n(material.emissiveFactor, 3, 0.0);
    log.warning(
        "Material '%s' uses glTF Unlit shader extension. At the point of making this warning Unlit extension is "
        "not fully ratified and could change at any point.",
        material.name.c_str());
    return;
  }

  readFloat(channels, "metallic", material.metallicFactor);
  readFloat(channels, "roughness", material.roughnessFactor);
  readReals(channels, kEmissive, material.emissiveFactor, 3);
  double level = 1.0;
  if (channels.real("emissivelevel", level)) {
    for (double& component : material.emissiveFactor) component *= level;
  }
  channels.real("normalscale", material.normalScale);
  channels.real("aoscale", material.occlusionStrength);
}

void readVexoMaterialLayer(GltfMaterialDesc& material, LayerChannels& channels) {
  double dissolve = 0.0;
  if (channels.real("dissAmt", dissolve)) {
    const double alpha = std::clamp(1.0 - dissolve, 0.0, 1.0);
    material.baseColorFactor[3] = alpha;
    if (alpha != 1.0) material.alphaMode = kAlphaBlend;
  }
  std::int32_t doubleSided = 0;
  if (channels.integer("dblSided", doubleSided)) material.doubleSided = doubleSided != 0;
}
