#include <cmath>

#include "gltf/document.h"

GltfTrs gltfDecompose(const double m[16]) {
  const auto at = [m](int r, int c) { return m[4 * r + c]; };
  GltfTrs trs{};
  trs.translation[0] = m[12];
  trs.translation[1] = m[13];
  trs.translation[2] = m[14];

  // Trace method on the matrix as it stands: scale is not divided out, so a
  // scaled matrix yields a quaternion longer than 1.
  double* q = trs.rotation;  // x, y, z, w
  const double s = 1.0 + m[0] + m[5] + m[10];
  if (s > 0.0) {
    const double r = std::sqrt(s);
    const double f = 0.5 / r;
    q[0] = (m[6] - m[9]) * f;
    q[1] = (m[8] - m[2]) * f;
    q[2] = (m[1] - m[4]) * f;
    q[3] = 0.5 * r;
  } else {
    static const int next[3] = {1, 2, 0};
    int i = 0;
    if (at(0, 0) < at(1, 1)) i = 1;
    if (at(2, 2) > at(i, i)) i = 2;
    const int j = next[i];
    const int k = next[j];
    const double r = std::sqrt(at(i, i) - at(j, j) - at(k, k) + 1.0);
    const double f = r > 0.0 ? 0.5 / r : r;
    q[i] = 0.5 * r;
    q[3] = (at(j, k) - at(k, j)) * f;
    q[j] = (at(i, j) + at(j, i)) * f;
    q[k] = (at(i, k) + at(k, i)) * f;
  }

  for (int row = 0; row < 3; ++row) {
    trs.scale[row] = std::sqrt(at(row, 0) * at(row, 0) + at(row, 1) * at(row, 1) + at(row, 2) * at(row, 2));
  }
  return trs;
}
