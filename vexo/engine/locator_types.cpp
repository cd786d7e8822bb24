#include "engine/locator_types.h"

namespace vexo {
namespace {

const char* const kMatrixChannelNames[kMatrixChannelCount] = {"wposMatrix",  "wrotMatrix",  "wsclMatrix",
                                                              "worldMatrix", "localMatrix", "parentMatrix"};
const char* const kTransformTypeNames[kTransformKindCount] = {"translation", "rotation", "scale", "transform",
                                                              "shear"};

}  // namespace

const char* matrixChannelName(MatrixChannel channel) { return kMatrixChannelNames[static_cast<int>(channel)]; }

const char* transformTypeName(TransformKind kind) { return kTransformTypeNames[static_cast<int>(kind)]; }

TransformKind mainTransformKind(MainTransform which) {
  static const TransformKind kKinds[kMainTransformCount] = {TransformKind::Translation, TransformKind::Rotation,
                                                            TransformKind::Scale};
  return kKinds[static_cast<int>(which)];
}

LocatorTypes::LocatorTypes(const TypeRegistry& types) : types_(types), locator_(types.find("locator")) {
  for (int i = 0; i < kTransformKindCount; ++i) transformTypes_[i] = types.find(kTransformTypeNames[i]);
  // Derived types list their base's channels first, so these indices hold for every locator type.
  for (int i = 0; i < kMatrixChannelCount; ++i) matrixChannels_[i] = types.findChannel(locator_, kMatrixChannelNames[i]);
}

bool LocatorTypes::isLocator(TypeCode type) const { return types_.derives(type, locator_); }

std::optional<TransformKind> LocatorTypes::transformKind(TypeCode type) const {
  for (int i = 0; i < kTransformKindCount; ++i)
    if (types_.derives(type, transformTypes_[i])) return static_cast<TransformKind>(i);
  return std::nullopt;
}

std::optional<MatrixChannel> LocatorTypes::matrixChannelAt(TypeCode type, std::size_t channel) const {
  if (!isLocator(type)) return std::nullopt;
  for (int i = 0; i < kMatrixChannelCount; ++i)
    if (matrixChannels_[i] >= 0 && static_cast<std::size_t>(matrixChannels_[i]) == channel)
      return static_cast<MatrixChannel>(i);
  return std::nullopt;
}

}  // namespace vexo
