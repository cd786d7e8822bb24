#include "import/gltf_load_options.h"

#include <cmath>

namespace {

struct BoolOption {
  const char* name;
  bool GltfLoadOptions::*field;
};

constexpr BoolOption kBoolOptions[] = {
    {"mergeWithExistingItems", &GltfLoadOptions::mergeWithExistingItems},
    {"loadGeometry", &GltfLoadOptions::loadGeometry},
    {"loadNormals", &GltfLoadOptions::loadNormals},
    {"loadMeshSmoothing", &GltfLoadOptions::loadMeshSmoothing},
    {"loadBlendShapes", &GltfLoadOptions::loadBlendShapes},
    {"loadPolygonParts", &GltfLoadOptions::loadPolygonParts},
    {"loadSelectionSets", &GltfLoadOptions::loadSelectionSets},
    {"loadMaterials", &GltfLoadOptions::loadMaterials},
    {"invertMatTranAmt", &GltfLoadOptions::invertMatTranAmt},
    {"useMatTranColAsTranAmt", &GltfLoadOptions::useMatTranColAsTranAmt},
    {"changeTextureEffect", &GltfLoadOptions::changeTextureEffect},
    {"loadCameras", &GltfLoadOptions::loadCameras},
    {"loadLights", &GltfLoadOptions::loadLights},
    {"loadAnimation", &GltfLoadOptions::loadAnimation},
    {"loadSampleAnimation", &GltfLoadOptions::loadSampleAnimation},
};

struct ChoiceOption {
  const char* name;
  int GltfLoadOptions::*field;
  int last;
};

constexpr ChoiceOption kChoiceOptions[] = {
    {"loadSampleAnimationRate", &GltfLoadOptions::loadSampleAnimationRate, 1},
    {"importUnits", &GltfLoadOptions::importUnits, 9},
};

constexpr const char* kScale = "globalScalingFactor";

}  // namespace

bool setGltfLoadOption(GltfLoadOptions& options, std::string_view name, double value, std::string& error) {
  for (const BoolOption& option : kBoolOptions) {
    if (name != option.name) continue;
    if (value != 0 && value != 1) {
      error = std::string(name) + " takes 0 or 1";
      return false;
    }
    options.*option.field = value != 0;
    return true;
  }
  for (const ChoiceOption& option : kChoiceOptions) {
    if (name != option.name) continue;
    if (!(value >= 0 && value <= option.last) || value != std::floor(value)) {
      error = std::string(name) + " takes a whole number from 0 to " + std::to_string(option.last);
      return false;
    }
    options.*option.field = static_cast<int>(value);
    return true;
  }
  if (name == kScale) {
    if (!std::isfinite(value) || value <= 0) {
      error = std::string(name) + " takes a number above 0";
      return false;
    }
    options.globalScalingFactor = value;
    return true;
  }
  error = "no load option is called \"" + std::string(name) + "\"";
  return false;
}

bool gltfLoadOptionValue(const GltfLoadOptions& options, std::string_view name, double& value) {
  for (const BoolOption& option : kBoolOptions)
    if (name == option.name) return value = options.*option.field ? 1 : 0, true;
  for (const ChoiceOption& option : kChoiceOptions)
    if (name == option.name) return value = options.*option.field, true;
  if (name == kScale) return value = options.globalScalingFactor, true;
  return false;
}

double importUnitMetres(int importUnits) {
  static constexpr double kMetres[] = {1.0, 0.001, 0.1, 0.01, 1.0, 1000.0, 0.0254, 0.3048, 0.9144, 1609.344};
  return importUnits >= 0 && importUnits <= 9 ? kMetres[importUnits] : 1.0;
}
