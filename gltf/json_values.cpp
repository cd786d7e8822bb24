#include "gltf/json_values.h"

#include <cmath>
#include <limits>

namespace gltf {

float toFloat(double v) {
  constexpr float kMax = std::numeric_limits<float>::max();
  if (std::isnan(v)) return 0.0f;
  if (v > kMax) return kMax;
  if (v < -kMax) return -kMax;
  return static_cast<float>(v);
}

Value numbers(const double* v, std::size_t n, Allocator& allocator) {
  Value array(rapidjson::kArrayType);
  array.Reserve(static_cast<rapidjson::SizeType>(n), allocator);
  for (std::size_t i = 0; i < n; ++i) array.PushBack(number(v[i]), allocator);
  return array;
}

Value numbers(const float* v, std::size_t n, Allocator& allocator) {
  Value array(rapidjson::kArrayType);
  array.Reserve(static_cast<rapidjson::SizeType>(n), allocator);
  for (std::size_t i = 0; i < n; ++i) array.PushBack(number(v[i]), allocator);
  return array;
}

}  // namespace gltf
