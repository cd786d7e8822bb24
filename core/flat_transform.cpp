#include "flat_transform.h"

#include <cmath>

namespace {

using Vec = double[3];

double dot(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void cross(const double* a, const double* b, double* out) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

// Below this, what is left of an axis after removing the others is taken as nothing.
constexpr double kDegenerate = 1e-9;

}  // namespace

bool flattensSpace(const double m[16]) {
  double f[9];
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) f[3 * r + c] = static_cast<float>(m[4 * r + c]);
  double row1xrow2[3];
  cross(f + 3, f + 6, row1xrow2);
  return dot(f, row1xrow2) == 0.0;
}

GltfTrs decomposeFlat(const double m[16]) {
  GltfTrs trs{};
  Vec axis[3];
  bool known[3];
  for (int r = 0; r < 3; ++r) {
    trs.translation[r] = m[12 + r];
    trs.scale[r] = std::sqrt(dot(m + 4 * r, m + 4 * r));
    // Gram-Schmidt in row order: each axis keeps what the earlier ones do not explain.
    double v[3] = {m[4 * r], m[4 * r + 1], m[4 * r + 2]};
    for (int k = 0; k < r; ++k) {
      if (!known[k]) continue;
      const double along = dot(v, axis[k]);
      for (int i = 0; i < 3; ++i) v[i] -= along * axis[k][i];
    }
    const double length = std::sqrt(dot(v, v));
    known[r] = trs.scale[r] > 0.0 && length > kDegenerate * trs.scale[r];
    for (int i = 0; i < 3; ++i) axis[r][i] = known[r] ? v[i] / length : 0.0;
  }

  // Each missing axis: the first of x, y, z that stands clear of the axes
  // already set, made square to them; the identity where nothing is known.
  for (int r = 0; r < 3; ++r) {
    if (known[r]) continue;
    for (int candidate = 0; candidate < 3; ++candidate) {
      const int canonical = (r + candidate) % 3;
      double v[3] = {0.0, 0.0, 0.0};
      v[canonical] = 1.0;
      for (int k = 0; k < 3; ++k) {
        if (!known[k]) continue;
        const double along = dot(v, axis[k]);
        for (int i = 0; i < 3; ++i) v[i] -= along * axis[k][i];
      }
      const double length = std::sqrt(dot(v, v));
      if (length < 0.5) continue;  // some canonical axis always keeps more than this
      for (int i = 0; i < 3; ++i) axis[r][i] = v[i] / length;
      known[r] = true;
      break;
    }
  }
  // A mirror: flip the axis with the smallest scale, which costs nothing when it is 0.
  double third[3];
  cross(axis[0], axis[1], third);
  if (dot(third, axis[2]) < 0.0) {
    int smallest = 0;
    for (int r = 1; r < 3; ++r)
      if (trs.scale[r] < trs.scale[smallest]) smallest = r;
    for (double& x : axis[smallest]) x = -x;
    if (trs.scale[smallest] != 0.0) trs.scale[smallest] = -trs.scale[smallest];
  }

  // glTF's rotation matrix has the axes as its columns: R[i][j] = axis[j][i].
  const auto R = [&axis](int i, int j) { return axis[j][i]; };
  double* q = trs.rotation;  // x, y, z, w
  const double trace = R(0, 0) + R(1, 1) + R(2, 2);
  if (trace > 0.0) {
    const double s = 0.5 / std::sqrt(trace + 1.0);
    q[3] = 0.25 / s;
    q[0] = (R(2, 1) - R(1, 2)) * s;
    q[1] = (R(0, 2) - R(2, 0)) * s;
    q[2] = (R(1, 0) - R(0, 1)) * s;
  } else if (R(0, 0) > R(1, 1) && R(0, 0) > R(2, 2)) {
    const double s = 2.0 * std::sqrt(1.0 + R(0, 0) - R(1, 1) - R(2, 2));
    q[3] = (R(2, 1) - R(1, 2)) / s;
    q[0] = 0.25 * s;
    q[1] = (R(0, 1) + R(1, 0)) / s;
    q[2] = (R(0, 2) + R(2, 0)) / s;
  } else if (R(1, 1) > R(2, 2)) {
    const double s = 2.0 * std::sqrt(1.0 + R(1, 1) - R(0, 0) - R(2, 2));
    q[3] = (R(0, 2) - R(2, 0)) / s;
    q[0] = (R(0, 1) + R(1, 0)) / s;
    q[1] = 0.25 * s;
    q[2] = (R(1, 2) + R(2, 1)) / s;
  } else {
    const double s = 2.0 * std::sqrt(1.0 + R(2, 2) - R(0, 0) - R(1, 1));
    q[3] = (R(1, 0) - R(0, 1)) / s;
    q[0] = (R(0, 2) + R(2, 0)) / s;
    q[1] = (R(1, 2) + R(2, 1)) / s;
    q[2] = 0.25 * s;
  }
  const double norm = std::sqrt(dot(q, q) + q[3] * q[3]);
  for (int i = 0; i < 4; ++i) q[i] /= norm;
  return trs;
}
