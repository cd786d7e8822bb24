// Plain 4x4 matrix helpers for tests that compare the host's matrices with
// what an independent engine computes from the written file.
#pragma once

#include <array>
#include <cmath>
#include <utility>

using Matrix = std::array<double, 16>;  // row-major row vectors: glTF's column-major layout

inline Matrix multiply(const Matrix& a, const Matrix& b) {
  Matrix out{};
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 4; ++c)
      for (int k = 0; k < 4; ++k) out[4 * r + c] += a[4 * r + k] * b[4 * k + c];
  return out;
}

// Gauss-Jordan with partial pivoting; the matrices compared here are invertible.
inline Matrix inverse(Matrix m) {
  Matrix inv{};
  for (int i = 0; i < 4; ++i) inv[5 * i] = 1.0;
  for (int col = 0; col < 4; ++col) {
    int pivot = col;
    for (int r = col + 1; r < 4; ++r)
      if (std::fabs(m[4 * r + col]) > std::fabs(m[4 * pivot + col])) pivot = r;
    for (int c = 0; c < 4; ++c) std::swap(m[4 * col + c], m[4 * pivot + c]), std::swap(inv[4 * col + c], inv[4 * pivot + c]);
    const double d = m[5 * col];
    for (int c = 0; c < 4; ++c) m[4 * col + c] /= d, inv[4 * col + c] /= d;
    for (int r = 0; r < 4; ++r) {
      if (r == col) continue;
      const double f = m[4 * r + col];
      for (int c = 0; c < 4; ++c) m[4 * r + c] -= f * m[4 * col + c], inv[4 * r + c] -= f * inv[4 * col + c];
    }
  }
  return inv;
}
