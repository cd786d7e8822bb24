// Matrices with a scale of 0 on some axis, split into translation, rotation
// and scale: putting the parts back together must give the matrix again.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "core/flat_transform.h"

namespace {

using Matrix = std::array<double, 16>;

// glTF's T * R * S as a row-major row-vector matrix: row i is the rotation's
// column i times scale i.
Matrix compose(const GltfTrs& trs) {
  const double x = trs.rotation[0], y = trs.rotation[1], z = trs.rotation[2], w = trs.rotation[3];
  const double r[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
                          {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
                          {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}};
  Matrix m{};
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < 3; ++col) m[4 * row + col] = r[col][row] * trs.scale[row];
  for (int i = 0; i < 3; ++i) m[12 + i] = trs.translation[i];
  m[15] = 1.0;
  return m;
}

// A random rotation (rows of an orthonormal basis, right-handed) scaled per row.
Matrix randomFlat(std::mt19937& random, const double scale[3]) {
  std::normal_distribution<double> normal;
  double q[4] = {normal(random), normal(random), normal(random), normal(random)};
  const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  for (double& v : q) v /= n;
  GltfTrs trs{{normal(random), normal(random), normal(random)}, {q[0], q[1], q[2], q[3]}, {scale[0], scale[1], scale[2]}};
  return compose(trs);
}

TEST(FlatTransform, PartsPutBackGiveTheMatrixWithAUnitRotation) {
  std::mt19937 random(11);
  const double scales[][3] = {{0, 1, 1}, {2, 0, 0.5}, {1, 3, 0}, {0, 0, 2}, {0, 0, 0}, {-1, 0, 1}, {0, -2, -3}};
  for (const auto& scale : scales) {
    for (int trial = 0; trial < 200; ++trial) {
      const Matrix m = randomFlat(random, scale);
      ASSERT_TRUE(flattensSpace(m.data()));
      const GltfTrs trs = decomposeFlat(m.data());
      const double* q = trs.rotation;
      ASSERT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3], 1.0, 1e-12);
      const Matrix back = compose(trs);
      for (int i = 0; i < 16; ++i)
        ASSERT_NEAR(back[i], m[i], 1e-9) << "scale " << scale[0] << "," << scale[1] << "," << scale[2] << " trial "
                                         << trial << " element " << i;
    }
  }
}

TEST(FlatTransform, AxisAlignedZeroScaleKeepsTheIdentityRotation) {
  Matrix m{};
  m[10] = 2.0, m[15] = 1.0;  // x and y collapsed, z doubled
  const GltfTrs trs = decomposeFlat(m.data());
  EXPECT_EQ(trs.rotation[3], 1.0);
  EXPECT_EQ(trs.scale[0], 0.0);
  EXPECT_EQ(trs.scale[1], 0.0);
  EXPECT_EQ(trs.scale[2], 2.0);
}

TEST(FlatTransform, OnlyMatricesWithoutInverseInSinglePrecisionFlatten) {
  Matrix m{};
  m[0] = m[5] = m[10] = m[15] = 1.0;
  EXPECT_FALSE(flattensSpace(m.data()));
  m[0] = 1e-20;  // tiny, but a float still holds it
  EXPECT_FALSE(flattensSpace(m.data()));
  m[0] = 1e-50;  // below what a float holds
  EXPECT_TRUE(flattensSpace(m.data()));
}

}  // namespace
