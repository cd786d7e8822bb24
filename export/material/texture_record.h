// What an image-map layer's texture is made of, and how its tile settings
// become glTF sampler codes.
#pragma once

#include <cstdint>
#include <string>

struct TextureRecord {
  std::string name;       // the layer name without its first "(Image)"
  std::string imageFile;  // the clip's file
  std::int32_t format = 0;  // the clip's format code: 1 PNG, 2 JPEG
  std::string uvMap;      // empty unless the locator projects by UV map
  std::int32_t tileU = 0, tileV = 0;
  double wrapU = 0.0, wrapV = 0.0;  // repeat counts
};

// `layerName` with its first "(Image)" cut out; the characters around it stay.
std::string textureName(const std::string& layerName);

// The glTF wrap mode (10497 REPEAT, 33071 CLAMP_TO_EDGE, 33648 MIRRORED_REPEAT)
// of a locator's tile mode.
std::uint32_t wrapMode(std::int32_t tile);

inline constexpr std::int32_t kProjectionUvMap = 6;
