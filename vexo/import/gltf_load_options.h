// The options of the host's glTF loader "gltfLoader", named as the module's
// load-options command names its attributes, with the host's defaults.
//
// The loader reads them as plain values; where they come from (the persisted
// configuration read back through the module, or a test) is the caller's
// business.
#pragma once

#include <string>
#include <string_view>

struct GltfLoadOptions {
  bool mergeWithExistingItems = false;
  bool loadGeometry = true;
  bool loadNormals = true;
  bool loadMeshSmoothing = true;
  bool loadBlendShapes = true;
  bool loadPolygonParts = false;
  bool loadSelectionSets = false;
  bool loadMaterials = true;
  bool invertMatTranAmt = false;
  bool useMatTranColAsTranAmt = false;
  bool changeTextureEffect = false;
  bool loadCameras = true;
  bool loadLights = true;
  bool loadAnimation = true;
  bool loadSampleAnimation = false;
  int loadSampleAnimationRate = 0;  // 0 "1x FPS", 1 "2x FPS"
  double globalScalingFactor = 1.0;
  int importUnits = 0;  // 0 file units (glTF: metres) .. 9 miles
};

// Sets the option called `name` to `value` (booleans take 0 or 1, the
// pop-ups one of their choice values). Returns false, leaving the options
// as they were and saying why in `error`, for an unknown name or a value the
// option cannot take.
bool setGltfLoadOption(GltfLoadOptions& options, std::string_view name, double value, std::string& error);

// The option's current value as a number, as setGltfLoadOption takes it;
// false for an unknown name.
bool gltfLoadOptionValue(const GltfLoadOptions& options, std::string_view name, double& value);

// Metres per unit of the "importUnits" choice; 0 ("file units") is glTF's metre.
double importUnitMetres(int importUnits);
