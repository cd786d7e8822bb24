// Transforms that flatten space (a scale of 0 on some axis). glTF cannot
// carry them as a "matrix", which must split into translation, rotation and
// scale; as separate parts, a scale of 0 is fine.
#pragma once

#include "gltf/document.h"

// True when the 3×3 part of the row-major row-vector matrix, as written in
// single precision, has no inverse.
bool flattensSpace(const double m[16]);

// The matrix as translation, a unit rotation and scale: each row's length is
// its axis' scale, the rotation is the rows made orthonormal, and an axis
// that collapsed (or fell in line with the others) is completed from the rest.
GltfTrs decomposeFlat(const double m[16]);
