#include "node_matrix.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "matrix4.h"

namespace {

// Units in the last place allowed for one element: the four products and
// their sum, plus what rounding in the inverse carries into them.
constexpr double kNoiseUlps = 16.0;

bool allFinite(const double m[16]) {
  return std::all_of(m, m + 16, [](double v) { return std::isfinite(v); });
}

bool sameInSinglePrecision(const double a[16], const double b[16]) {
  for (int i = 0; i < 16; ++i)
    if (static_cast<float>(a[i]) != static_cast<float>(b[i])) return false;
  return true;
}

// The local matrix with what only the rounding of world × inverse kept from
// zero set to zero, so that an identity stays an identity. The cleared matrix
// is taken only when, put back under the parent, it still gives the host's
// world matrix in single precision: clearing never moves the placement the
// file describes, only noise below what the file can hold.
void clearRoundingNoise(const double world[16], const double parent[16], const double inverse[16],
                        double local[16]) {
  double cleared[16];
  bool changed = false;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      double magnitude = 0.0;
      for (int k = 0; k < 4; ++k) magnitude += std::fabs(world[4 * r + k]) * std::fabs(inverse[4 * k + c]);
      const double value = local[4 * r + c];
      const bool noise = value != 0.0 && std::isfinite(magnitude) && std::fabs(value) <= kNoiseUlps * DBL_EPSILON * magnitude;
      cleared[4 * r + c] = noise ? 0.0 : value;
      changed = changed || noise;
    }
  }
  if (!changed) return;
  double back[16];
  matrix4::multiply(cleared, parent, back);
  if (sameInSinglePrecision(back, world)) std::copy(cleared, cleared + 16, local);
}

}  // namespace

NodeMatrix chooseNodeMatrix(const double world[16], const double* parentWorld, Placement rule,
                            const double* ownLocal) {
  NodeMatrix result;
  std::copy(world, world + 16, result.matrix);
  result.placement = Placement::World;
  double inverse[16];
  if (rule == Placement::Local && parentWorld && !matrix4::invert(parentWorld, inverse)) {
    if (ownLocal) {
      std::copy(ownLocal, ownLocal + 16, result.matrix);
      result.placement = Placement::Local;
    }
  } else if (rule == Placement::Local && parentWorld) {
    result.placement = Placement::Local;
    if (std::equal(world, world + 16, parentWorld)) {
      // A child placed exactly on its parent: no arithmetic, no noise.
      matrix4::identity(result.matrix);
    } else {
      matrix4::multiply(world, inverse, result.matrix);
      clearRoundingNoise(world, parentWorld, inverse, result.matrix);
    }
  }
  result.finite = allFinite(result.matrix);
  return result;
}
