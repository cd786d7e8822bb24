#include "engine/matrix.h"

#include <cmath>

namespace vexo {
namespace {

const char* const kOrderNames[kRotationOrderCount] = {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"};

// The rotation about one axis (0 = X, 1 = Y, 2 = Z) for row vectors.
Matrix axisRotation(int axis, double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  const int a = (axis + 1) % 3, b = (axis + 2) % 3;  // the plane the rotation turns, a towards b
  Matrix m = identityMatrix();
  m[a * 4 + a] = c;
  m[a * 4 + b] = s;
  m[b * 4 + a] = -s;
  m[b * 4 + b] = c;
  return m;
}

double rowLength(const Matrix& m, int row) {
  return std::sqrt(m[row * 4] * m[row * 4] + m[row * 4 + 1] * m[row * 4 + 1] + m[row * 4 + 2] * m[row * 4 + 2]);
}

double determinant3(const Matrix& m) {
  return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
         m[2] * (m[4] * m[9] - m[5] * m[8]);
}

Vector3 scaleOf(const Matrix& m) {
  Vector3 s = {rowLength(m, 0), rowLength(m, 1), rowLength(m, 2)};
  if (determinant3(m) < 0.0) s[0] = -s[0];
  return s;
}

}  // namespace

const char* rotationOrderName(RotationOrder order) { return kOrderNames[static_cast<int>(order)]; }

std::optional<RotationOrder> rotationOrderByName(std::string_view name) {
  for (int i = 0; i < kRotationOrderCount; ++i)
    if (name == kOrderNames[i]) return static_cast<RotationOrder>(i);
  return std::nullopt;
}

RotationOrder rotationOrderFromChannel(int value) {
  return value >= 0 && value < kRotationOrderCount ? static_cast<RotationOrder>(value) : RotationOrder::XYZ;
}

Matrix multiply(const Matrix& a, const Matrix& b) {
  Matrix r{};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      double sum = 0.0;
      for (int k = 0; k < 4; ++k) sum += a[i * 4 + k] * b[k * 4 + j];
      r[i * 4 + j] = sum;
    }
  return r;
}

Matrix translationMatrix(const Vector3& t) {
  Matrix m = identityMatrix();
  m[12] = t[0];
  m[13] = t[1];
  m[14] = t[2];
  return m;
}

Matrix scaleMatrix(const Vector3& s) {
  Matrix m = identityMatrix();
  m[0] = s[0];
  m[5] = s[1];
  m[10] = s[2];
  return m;
}

Matrix rotationMatrix(const Vector3& angles, RotationOrder order) {
  // The axes of each order, first applied first.
  static const int kAxes[kRotationOrderCount][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2},
                                                    {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
  const int* axes = kAxes[static_cast<int>(order)];
  Matrix m = axisRotation(axes[0], angles[axes[0]]);
  m = multiply(m, axisRotation(axes[1], angles[axes[1]]));
  return multiply(m, axisRotation(axes[2], angles[axes[2]]));
}

Matrix shearMatrix(double xy, double xz, double yz) {
  Matrix m = identityMatrix();
  m[4] = xy;  // y feeds x
  m[8] = xz;  // z feeds x
  m[9] = yz;  // z feeds y
  return m;
}

Vector3 transformPoint(const Matrix& m, const Vector3& p) {
  Vector3 r{};
  for (int j = 0; j < 3; ++j) r[j] = p[0] * m[j] + p[1] * m[4 + j] + p[2] * m[8 + j] + m[12 + j];
  return r;
}

Matrix translationPart(const Matrix& m) { return translationMatrix({m[12], m[13], m[14]}); }

Matrix scalePart(const Matrix& m) { return scaleMatrix(scaleOf(m)); }

Matrix rotationPart(const Matrix& m) {
  const Vector3 s = scaleOf(m);
  Matrix r = identityMatrix();
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < 3; ++col) r[row * 4 + col] = s[row] != 0.0 ? m[row * 4 + col] / s[row] : (row == col);
  return r;
}

}  // namespace vexo
