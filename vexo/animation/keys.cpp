#include "animation/keys.h"

#include <algorithm>
#include <cmath>

namespace vexo {

bool KeyCurve::assign(std::vector<Key> keys, std::string* problem) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const std::string at = "key " + std::to_string(i);
    if (!std::isfinite(keys[i].time) || !std::isfinite(keys[i].value)) {
      if (problem) *problem = at + " is not a finite number";
      return false;
    }
    if (i > 0 && !(keys[i].time > keys[i - 1].time)) {
      if (problem)
        *problem = at + (keys[i].time == keys[i - 1].time ? " repeats the time of the key before it"
                                                          : " comes before the key before it; key times must increase");
      return false;
    }
  }
  keys_ = std::move(keys);
  return true;
}

double KeyCurve::evaluate(double time) const {
  if (keys_.empty()) return 0.0;
  if (!(time > keys_.front().time)) return keys_.front().value;
  if (time >= keys_.back().time) return keys_.back().value;
  // The first key after `time`; the one before it starts the span `time` lies in.
  auto next = std::upper_bound(keys_.begin(), keys_.end(), time,
                               [](double t, const Key& key) { return t < key.time; });
  const Key& a = *(next - 1);
  const Key& b = *next;
  if (a.interpolation == Interpolation::Stepped) return a.value;
  const double f = (time - a.time) / (b.time - a.time);
  return a.value + (b.value - a.value) * f;
}

const char* interpolationName(Interpolation interpolation) {
  return interpolation == Interpolation::Stepped ? "stepped" : "linear";
}

}  // namespace vexo
