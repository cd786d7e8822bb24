// glTF placements as the host's transform items: a node's matrix or its
// translation, rotation (a quaternion) and scale, turned into the shear,
// scale, rotation (Euler angles in the host's XYZ order) and position the
// host's transform stack applies in that order.
#pragma once

#include <array>

#include "engine/matrix.h"

namespace vexo {

// x, y, z, w as glTF writes a quaternion.
using Quaternion = std::array<double, 4>;

struct StackParts {
  bool sheared = false;
  double shearXY = 0, shearXZ = 0, shearYZ = 0;
  Vector3 scale{1, 1, 1};
  Vector3 rotation{0, 0, 0};  // radians, XYZ order
  Vector3 translation{0, 0, 0};
};

// Euler angles (radians, the host's XYZ order) of a quaternion, which need
// not be of unit length; a zero quaternion gives no rotation.
Vector3 eulerFromQuaternion(const Quaternion& q);

// The parts of a glTF "matrix" (column-major, the host's row-major
// row-vector order). Exact for any matrix with an inverse, shear included
// (a QR decomposition); false for one without, whose parts are then the
// lengths of its axes and no rotation.
bool decomposeMatrix(const Matrix& m, StackParts& parts);

// Of the angles that give the same rotation as `angles` (each axis shifted by
// whole turns, or the other XYZ solution), the one nearest to `previous`, so
// that keys interpolated linearly turn the short way.
Vector3 nearestEuler(const Vector3& angles, const Vector3& previous);

// Spherical interpolation between two unit quaternions, the short way round.
Quaternion slerp(const Quaternion& a, Quaternion b, double t);

// The angle in radians between two unit quaternions' rotations.
double rotationAngle(const Quaternion& a, const Quaternion& b);

}  // namespace vexo
