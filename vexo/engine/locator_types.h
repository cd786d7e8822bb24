// What a type registry holds for locators and their transform stacks: the
// locator type, the five transform item types, and the locators' computed
// matrix channels, looked up once by name.
#pragma once

#include <cstddef>
#include <optional>

#include "engine/item_types.h"

namespace vexo {

// The matrix channels every locator carries, computed from its transform
// stack and its parents when read. Numbered in the order of their names below.
enum class MatrixChannel { WorldPosition, WorldRotation, WorldScale, World, Local, Parent };
inline constexpr int kMatrixChannelCount = 6;

// "wposMatrix", "wrotMatrix", "wsclMatrix", "worldMatrix", "localMatrix", "parentMatrix".
const char* matrixChannelName(MatrixChannel channel);

// The transform item types, by what their matrix does.
enum class TransformKind { Translation, Rotation, Scale, Transform, Shear };
inline constexpr int kTransformKindCount = 5;

// "translation", "rotation", "scale", "transform", "shear".
const char* transformTypeName(TransformKind kind);

// The three main transforms of a locator, numbered as the SDK numbers them.
enum class MainTransform { Position, Rotation, Scale };
inline constexpr int kMainTransformCount = 3;

// The transform kind a main transform must be.
TransformKind mainTransformKind(MainTransform which);

class LocatorTypes {
 public:
  // A registry without a "locator" type has no locators; one without a
  // transform type has no items of that kind.
  explicit LocatorTypes(const TypeRegistry& types);

  bool isLocator(TypeCode type) const;
  std::optional<TransformKind> transformKind(TypeCode type) const;
  TypeCode transformType(TransformKind kind) const { return transformTypes_[static_cast<int>(kind)]; }
  // The index of a matrix channel on every locator; -1 when the registry lacks it.
  int matrixChannel(MatrixChannel which) const { return matrixChannels_[static_cast<int>(which)]; }
  // Which matrix channel a locator's channel is, if it is one.
  std::optional<MatrixChannel> matrixChannelAt(TypeCode type, std::size_t channel) const;

 private:
  const TypeRegistry& types_;
  TypeCode locator_ = kNoType;
  TypeCode transformTypes_[kTransformKindCount];
  int matrixChannels_[kMatrixChannelCount];
};

}  // namespace vexo
