// Matrix arithmetic for transform stacks: 4x4, row-major, row vectors
// (a point p transforms as p * M; the translation lies in elements 12 to 14).
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "engine/value.h"

namespace vexo {

// The order in which a rotation applies its three axis rotations: XYZ turns
// about X first, then Y, then Z. The numbering is the "order" channel's.
enum class RotationOrder { XYZ, XZY, YXZ, YZX, ZXY, ZYX };
inline constexpr int kRotationOrderCount = 6;

// "XYZ", "XZY", ...
const char* rotationOrderName(RotationOrder order);
std::optional<RotationOrder> rotationOrderByName(std::string_view name);
// The order an "order" channel value stands for; values outside 0..5 act as XYZ.
RotationOrder rotationOrderFromChannel(int value);

using Vector3 = std::array<double, 3>;

// a * b: for row vectors, the transform of `a` applies first.
Matrix multiply(const Matrix& a, const Matrix& b);

Matrix translationMatrix(const Vector3& t);
Matrix scaleMatrix(const Vector3& s);
// Angles in radians, right-handed: a positive angle about Z turns X towards Y.
Matrix rotationMatrix(const Vector3& angles, RotationOrder order);
// x += xy * y + xz * z and y += yz * z.
Matrix shearMatrix(double xy, double xz, double yz);

Vector3 transformPoint(const Matrix& m, const Vector3& p);

// The parts of a matrix as a locator's world channels show them: the
// translation alone; the scale as the lengths of the three axis rows (the
// first one negative when the matrix mirrors); the rotation as the axis rows
// divided by that scale. Exact for matrices made of scale, rotation and
// translation; an approximation once shear is involved.
Matrix translationPart(const Matrix& m);
Matrix scalePart(const Matrix& m);
Matrix rotationPart(const Matrix& m);

}  // namespace vexo
