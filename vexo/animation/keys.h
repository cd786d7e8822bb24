// Keyframes of one channel in one action, and their interpolation.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vexo {

// How a key's value moves on to the next key's.
enum class Interpolation {
  Linear,   // a straight line to the next key
  Stepped,  // held until the next key, then a jump
};

struct Key {
  double time;
  double value;
  Interpolation interpolation = Interpolation::Linear;  // of the span that starts at this key
};

class KeyCurve {
 public:
  // False, with the reason in `problem`, unless the times strictly increase
  // and every time and value is finite; the curve is then left as it was.
  bool assign(std::vector<Key> keys, std::string* problem);

  bool empty() const { return keys_.empty(); }
  std::size_t size() const { return keys_.size(); }
  const Key& key(std::size_t index) const { return keys_[index]; }

  // The value at `time`: the first key's value before it, the last key's
  // after it, and between two keys as the earlier key's interpolation says.
  // An empty curve gives 0.
  double evaluate(double time) const;

 private:
  std::vector<Key> keys_;
};

// "linear" or "stepped".
const char* interpolationName(Interpolation interpolation);

}  // namespace vexo
