// The world-or-local choice of a node's matrix, with plain arrays.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/matrix4.h"
#include "core/node_matrix.h"

namespace {

using Matrix = std::array<double, 16>;

Matrix identity() {
  Matrix m{};
  matrix4::identity(m.data());
  return m;
}

Matrix translation(double x, double y, double z) {
  Matrix m = identity();
  m[12] = x, m[13] = y, m[14] = z;
  return m;
}

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix out{};
  matrix4::multiply(a.data(), b.data(), out.data());
  return out;
}

// A rotation about a unit axis (row vectors), uniformly scaled, then moved.
Matrix placement(const double axis[3], double angle, double scale, const double move[3]) {
  const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
  const double x = axis[0], y = axis[1], z = axis[2];
  const double r[9] = {t * x * x + c,     t * x * y + s * z, t * x * z - s * y,  //
                       t * x * y - s * z, t * y * y + c,     t * y * z + s * x,  //
                       t * x * z + s * y, t * y * z - s * x, t * z * z + c};
  Matrix m = identity();
  for (int row = 0; row < 3; ++row)
    for (int col = 0; col < 3; ++col) m[4 * row + col] = scale * r[3 * row + col];
  m[12] = move[0], m[13] = move[1], m[14] = move[2];
  return m;
}

TEST(NodeMatrix, LocalKeepsEveryValueTheHostGivesUnderAnIdentityParent) {
  const Matrix parent = identity();
  // A small value beside a huge one, a half beside 3e12, a lone tiny value.
  for (const Matrix& world : {translation(0.5, 0, 3e12), translation(1e-7, 0, 123456789), translation(1e-13, 0, 0),
                              translation(-2.5e-30, 7, 0)}) {
    const NodeMatrix chosen = chooseNodeMatrix(world.data(), parent.data(), Placement::Local);
    EXPECT_EQ(chosen.placement, Placement::Local);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(chosen.matrix[i], world[i]) << "element " << i;
  }
}

TEST(NodeMatrix, LocalKeepsSmallOffsetsFromAMovedParent) {
  const Matrix parent = translation(10, -4, 2);
  const Matrix world = translation(10 + 1e-9, -4, 2.25);
  const NodeMatrix chosen = chooseNodeMatrix(world.data(), parent.data(), Placement::Local);
  EXPECT_NEAR(chosen.matrix[12], 1e-9, 1e-14);
  EXPECT_NE(chosen.matrix[12], 0.0);
  EXPECT_EQ(chosen.matrix[14], 0.25);
}

TEST(NodeMatrix, AChildOnItsParentIsExactlyTheIdentity) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  for (int trial = 0; trial < 2000; ++trial) {
    double axis[3] = {unit(random), unit(random), unit(random)};
    const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
    if (length < 1e-3) continue;
    for (double& a : axis) a /= length;
    const double move[3] = {100 * unit(random), 100 * unit(random), 100 * unit(random)};
    const Matrix parent = placement(axis, 3 * unit(random), 0.1 + 4 * (unit(random) + 1), move);
    const NodeMatrix chosen = chooseNodeMatrix(parent.data(), parent.data(), Placement::Local);
    const Matrix expected = identity();
    for (int i = 0; i < 16; ++i) {
      // The identity test of the writer compares after rounding to float.
      ASSERT_EQ(static_cast<float>(chosen.matrix[i]), static_cast<float>(expected[i]))
          << "trial " << trial << " element " << i << " value " << chosen.matrix[i];
    }
  }
}

TEST(NodeMatrix, LocalTimesParentGivesTheWorldBack) {
  const double axis[3] = {0, 0.6, 0.8};
  const double move[3] = {1, 2, 3};
  const Matrix parent = placement(axis, 0.7, 2.0, move);
  const double childAxis[3] = {1, 0, 0};
  const double childMove[3] = {-5, 0.125, 9};
  const Matrix local = placement(childAxis, -1.1, 0.5, childMove);
  const Matrix world = product(local, parent);
  const NodeMatrix chosen = chooseNodeMatrix(world.data(), parent.data(), Placement::Local);
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(chosen.matrix[i], local[i], 1e-12) << "element " << i;
}

TEST(NodeMatrix, WorldIsKeptByRuleOrWhenTheParentCannotBeDividedOut) {
  const Matrix world = translation(1, 2, 3);
  Matrix flat = identity();
  flat[5] = 0.0;  // a scale of 0 on y: no inverse
  const Matrix moved = translation(5, 5, 5);
  struct Case {
    const double* parent;
    Placement rule;
  } cases[] = {{moved.data(), Placement::World}, {nullptr, Placement::Local}, {flat.data(), Placement::Local}};
  for (const Case& c : cases) {
    const NodeMatrix chosen = chooseNodeMatrix(world.data(), c.parent, c.rule);
    EXPECT_EQ(chosen.placement, Placement::World);
    EXPECT_TRUE(chosen.finite);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(chosen.matrix[i], world[i]);
  }
}

TEST(NodeMatrix, NaNAndInfinityAreFlagged) {
  Matrix world = translation(1, 2, 3);
  world[13] = std::nan("");
  EXPECT_FALSE(chooseNodeMatrix(world.data(), nullptr, Placement::World).finite);
  const Matrix huge = translation(1e308, 0, 0);
  const Matrix far = translation(-1e308, 0, 0);
  // 1e308 - (-1e308) overflows to infinity.
  EXPECT_FALSE(chooseNodeMatrix(huge.data(), far.data(), Placement::Local).finite);
}

}  // namespace
