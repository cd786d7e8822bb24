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

// Sets to zero what only the rounding of world × inverse kept from zero.
void clearRoundingNoise(const double world[16], const double inverse[16], double local[16]) {
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      double magnitude = 0.0;
      for (int k = 0; k < 4; ++k) magnitude += std::fabs(world[4 * r + k]) * std::fabs(inverse[4 * k + c]);
      double& value = local[4 * r + c];
      // An overflow stays what it is, for the caller to see.
      if (std::isfinite(magnitude) && std::fabs(value) <= kNoiseUlps * DBL_EPSILON * magnitude) value = 0.0;
    }
  }
}

}  // namespace

NodeMatrix chooseNodeMatrix(const double world[16], const double* parentWorld, Placement rule) {
  NodeMatrix result;
  std::copy(world, world + 16, result.matrix);
  result.placement = Placement::World;
  double inverse[16];
  if (rule == Placement::Local && parentWorld && matrix4::invert(parentWorld, inverse)) {
    matrix4::multiply(world, inverse, result.matrix);
    clearRoundingNoise(world, inverse, result.matrix);
    result.placement = Placement::Local;
  }
  result.finite = allFinite(result.matrix);
  return result;
}
