#include "import/gltf_transform.h"

#include <cmath>

namespace vexo {
namespace {

const double kPi = std::acos(-1.0);

using Rotation3 = std::array<std::array<double, 3>, 3>;  // column-vector convention, [row][column]

// R = Rz * Ry * Rx for column vectors: X turns first, as the host's XYZ order.
Vector3 eulerFromRotation(const Rotation3& r) {
  const double sy = std::fmax(-1.0, std::fmin(1.0, -r[2][0]));
  const double y = std::asin(sy);
  if (std::fabs(sy) > 1.0 - 1e-12) return {0.0, y, std::atan2(-r[0][1], r[1][1])};
  return {std::atan2(r[2][1], r[2][2]), y, std::atan2(r[1][0], r[0][0])};
}

double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double wrapNear(double angle, double target) { return angle + 2 * kPi * std::round((target - angle) / (2 * kPi)); }

}  // namespace

Vector3 eulerFromQuaternion(const Quaternion& q) {
  const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  if (!(n > 0)) return {0, 0, 0};
  const double x = q[0] / n, y = q[1] / n, z = q[2] / n, w = q[3] / n;
  const Rotation3 r = {{{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
                        {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
                        {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}}};
  return eulerFromRotation(r);
}

bool decomposeMatrix(const Matrix& m, StackParts& parts) {
  parts = StackParts{};
  parts.translation = {m[12], m[13], m[14]};
  const Vector3 a[3] = {{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}};
  // Gram-Schmidt on the columns: A = Q * R, R upper triangular.
  const double r00 = std::sqrt(dot(a[0], a[0]));
  const double tiny = 1e-12 * std::fmax(1.0, r00);
  Vector3 q0{}, q1{}, q2{};
  double r01 = 0, r02 = 0, r11 = 0, r12 = 0, r22 = 0;
  bool ok = r00 > tiny;
  if (ok) {
    for (int i = 0; i < 3; ++i) q0[i] = a[0][i] / r00;
    r01 = dot(q0, a[1]);
    Vector3 u1;
    for (int i = 0; i < 3; ++i) u1[i] = a[1][i] - r01 * q0[i];
    r11 = std::sqrt(dot(u1, u1));
    ok = r11 > tiny;
    if (ok) {
      for (int i = 0; i < 3; ++i) q1[i] = u1[i] / r11;
      r02 = dot(q0, a[2]);
      r12 = dot(q1, a[2]);
      Vector3 u2;
      for (int i = 0; i < 3; ++i) u2[i] = a[2][i] - r02 * q0[i] - r12 * q1[i];
      r22 = std::sqrt(dot(u2, u2));
      ok = r22 > tiny;
      if (ok) for (int i = 0; i < 3; ++i) q2[i] = u2[i] / r22;
    }
  }
  if (!ok) {
    parts.scale = {std::sqrt(dot(a[0], a[0])), std::sqrt(dot(a[1], a[1])), std::sqrt(dot(a[2], a[2]))};
    return false;
  }
  // A mirroring matrix keeps a proper rotation and a negative Z scale.
  if (dot(cross(q0, q1), q2) < 0) {
    for (double& v : q2) v = -v;
    r22 = -r22;
  }
  parts.scale = {r00, r11, r22};
  parts.shearXY = r01 / r00;
  parts.shearXZ = r02 / r00;
  parts.shearYZ = r12 / r11;
  const double eps = 1e-9;
  parts.sheared = std::fabs(parts.shearXY) > eps || std::fabs(parts.shearXZ) > eps || std::fabs(parts.shearYZ) > eps;
  if (!parts.sheared) parts.shearXY = parts.shearXZ = parts.shearYZ = 0;
  const Rotation3 r = {{{q0[0], q1[0], q2[0]}, {q0[1], q1[1], q2[1]}, {q0[2], q1[2], q2[2]}}};
  parts.rotation = eulerFromRotation(r);
  return true;
}

Vector3 nearestEuler(const Vector3& angles, const Vector3& previous) {
  // For R = Rz Ry Rx, (x + pi, pi - y, z + pi) is the same rotation.
  const Vector3 candidates[2] = {angles, {angles[0] + kPi, kPi - angles[1], angles[2] + kPi}};
  Vector3 best{};
  double bestDistance = INFINITY;
  for (const Vector3& c : candidates) {
    Vector3 v;
    double distance = 0;
    for (int i = 0; i < 3; ++i) {
      v[i] = wrapNear(c[i], previous[i]);
      distance += (v[i] - previous[i]) * (v[i] - previous[i]);
    }
    if (distance < bestDistance) bestDistance = distance, best = v;
  }
  return best;
}

Quaternion slerp(const Quaternion& a, Quaternion b, double t) {
  double d = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
  if (d < 0) {
    for (double& v : b) v = -v;
    d = -d;
  }
  Quaternion out;
  if (d > 0.9995) {
    double n = 0;
    for (int i = 0; i < 4; ++i) out[i] = a[i] + t * (b[i] - a[i]), n += out[i] * out[i];
    n = std::sqrt(n);
    for (double& v : out) v /= n;
    return out;
  }
  const double theta = std::acos(d), s = std::sin(theta);
  const double wa = std::sin((1 - t) * theta) / s, wb = std::sin(t * theta) / s;
  for (int i = 0; i < 4; ++i) out[i] = wa * a[i] + wb * b[i];
  return out;
}

double rotationAngle(const Quaternion& a, const Quaternion& b) {
  const double d = std::fabs(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]);
  return 2 * std::acos(std::fmin(1.0, d));
}

}  // namespace vexo
