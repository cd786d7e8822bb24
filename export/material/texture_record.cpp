#include "texture_record.h"

namespace {

constexpr std::uint32_t kRepeat = 10497;
constexpr std::uint32_t kClampToEdge = 33071;
constexpr std::uint32_t kMirroredRepeat = 33648;

// Indexed by the locator's tile mode: 0 stops at the edge (its pixels
// continue), 1 repeats, 2 repeats mirrored; the host treats others as 1.
constexpr std::uint32_t kWrapModes[] = {kClampToEdge, kRepeat, kMirroredRepeat};

}  // namespace

std::string textureName(const std::string& layerName) {
  static const std::string kImage = "(Image)";
  std::string name = layerName;
  const std::size_t at = name.find(kImage);
  if (at != std::string::npos) name.erase(at, kImage.size());
  return name;
}

std::uint32_t wrapMode(std::int32_t tile) {
  if (tile < 0 || tile >= static_cast<std::int32_t>(sizeof kWrapModes / sizeof kWrapModes[0])) return kRepeat;
  return kWrapModes[tile];
}
