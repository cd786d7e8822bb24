#include "export/animation/transform_curves.h"

#include <gtest/gtest.h>

#include <cmath>


namespace {

// Row-major, row vectors: rows are the scaled axes, row 3 the translation.
void rotationZ(double degrees, const double scale[3], const double translation[3], double m[16]) {
  const double a = degrees * std::acos(-1.0) / 180.0;
  const double rows[4][4] = {{std::cos(a) * scale[0], std::sin(a) * scale[0], 0, 0},
                             {-std::sin(a) * scale[1], std::cos(a) * scale[1], 0, 0},
                             {0, 0, scale[2], 0},
                             {translation[0], translation[1], translation[2], 1}};
  for (int i = 0; i < 16; ++i) m[i] = rows[i / 4][i % 4];
}

GltfSettings settings() { return GltfSettings{0, 0, 0, nullptr}; }

double length(const double* v, int n) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += v[i] * v[i];
  return std::sqrt(sum);
}

}  // namespace

TEST(TransformCurves, OnlyAnimatedComponentsGetCurvesInOrder) {
  GltfDocument document(settings());
  const std::uint32_t node = document.addNode(document.root(), "n");
  const std::uint32_t animation = document.addAnimation("a");
  TransformCurves rotationOnly(node, false, true, false);
  rotationOnly.addCurves(document, animation);
  TransformCurves translationAndScale(node, true, false, true);
  translationAndScale.addCurves(document, animation);
  TransformCurves none(node, false, false, false);
  none.addCurves(document, animation);
  EXPECT_EQ(none.initialised(), 0);

  double m[16];
  const double scale[3] = {1, 1, 1}, move[3] = {1, 2, 3};
  rotationZ(30, scale, move, m);
  for (TransformCurves* curves : {&rotationOnly, &translationAndScale, &none}) curves->append(document, 0.5, m);

  document.finishAnimation(animation);
  const std::string json = document.json("x.glb");
  EXPECT_NE(json.find(R"("channels":[{"sampler":0,"target":{"node":0,"path":"rotation"}},)"
                      R"({"sampler":1,"target":{"node":0,"path":"translation"}},)"
                      R"({"sampler":2,"target":{"node":0,"path":"scale"}}])"),
            std::string::npos)
      << json;
  EXPECT_EQ(none.history(TransformCurves::kRotation).count, 0);
}

// The trace method on the matrix as it stands: a scale of 2 is not divided
// out, so the quaternion is not of unit length, and its direction is not the
// item's rotation either.
TEST(TransformCurves, ScaledRotationKeepsTheTraceMethodQuaternionUnnormalised) {
  GltfDocument document(settings());
  TransformCurves curves(document.addNode(document.root(), "n"), false, true, true);
  curves.addCurves(document, document.addAnimation("a"));
  double m[16];
  const double scale[3] = {2, 2, 2}, origin[3] = {0, 0, 0};
  rotationZ(90, scale, origin, m);
  curves.append(document, 0.0, m);

  const TransformCurves::History& rotation = curves.history(TransformCurves::kRotation);
  ASSERT_EQ(rotation.count, 1);
  const double* q = rotation.slots[1];
  EXPECT_DOUBLE_EQ(q[2], 2.0 / std::sqrt(3.0));
  EXPECT_DOUBLE_EQ(q[3], std::sqrt(3.0) / 2.0);
  EXPECT_DOUBLE_EQ(length(q, 4), 5.0 / (2.0 * std::sqrt(3.0)));
  EXPECT_DOUBLE_EQ(length(curves.history(TransformCurves::kScale).slots[1], 3), 2.0 * std::sqrt(3.0));
}

TEST(TransformCurves, MirroredItemGivesPositiveScale) {
  GltfDocument document(settings());
  TransformCurves curves(document.addNode(document.root(), "n"), false, false, true);
  curves.addCurves(document, document.addAnimation("a"));
  double m[16];
  const double mirrored[3] = {-1.5, 2, -3}, origin[3] = {0, 0, 0};
  rotationZ(0, mirrored, origin, m);
  curves.append(document, 0.0, m);
  const double* s = curves.history(TransformCurves::kScale).slots[1];
  EXPECT_EQ(s[0], 1.5);
  EXPECT_EQ(s[1], 2.0);
  EXPECT_EQ(s[2], 3.0);
}

// Without a positive trace the largest diagonal element picks the axis;
// equal elements keep the lower index.
TEST(TransformCurves, TraceMethodTieRules) {
  const struct {
    double diagonal[3];
    int axis;        // the one non-zero component
    double value;    // 0.5 * sqrt(M[i][i] - M[j][j] - M[k][k] + 1)
  } cases[] = {
      {{-1, -1, -1}, 0, std::sqrt(2.0) / 2},   // all equal: X
      {{-2, -1, -1}, 1, std::sqrt(3.0) / 2},   // Y and Z equal and largest: Y
      {{-1, -2, -1}, 0, std::sqrt(3.0) / 2},   // X and Z equal: Z is not strictly larger
  };
  for (const auto& c : cases) {
    const double m[16] = {c.diagonal[0], 0, 0, 0, 0, c.diagonal[1], 0, 0, 0, 0, c.diagonal[2], 0, 0, 0, 0, 1};
    const GltfTrs parts = gltfDecompose(m);
    for (int i = 0; i < 4; ++i)
      EXPECT_DOUBLE_EQ(parts.rotation[i], i == c.axis ? c.value : 0.0)
          << c.diagonal[0] << " " << c.diagonal[1] << " " << c.diagonal[2] << ", component " << i;
  }
}

TEST(TransformCurves, KeepsTheLastThreeSamplesInRotatingSlots) {
  GltfDocument document(settings());
  TransformCurves curves(document.addNode(document.root(), "n"), true, false, false);
  curves.addCurves(document, document.addAnimation("a"));
  double m[16];
  const double scale[3] = {1, 1, 1};
  for (int i = 1; i <= 4; ++i) {
    const double move[3] = {static_cast<double>(i), 0, 0};
    rotationZ(0, scale, move, m);
    curves.append(document, 0.1 * i, m);
  }
  const TransformCurves::History& h = curves.history(TransformCurves::kTranslation);
  EXPECT_EQ(h.count, 4);
  EXPECT_EQ(h.lastTime, 0.4);
  EXPECT_EQ(h.slots[1][0], 4.0);  // 4 mod 3
  EXPECT_EQ(h.slots[0][0], 3.0);
  EXPECT_EQ(h.slots[2][0], 2.0);
}
