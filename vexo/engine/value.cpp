#include "engine/value.h"

namespace vexo {

const char* valueTypeName(ValueType type) {
  static const char* const kNames[] = {"integer", "float", "text", "matrix"};
  return kNames[static_cast<int>(type)];
}

Matrix identityMatrix() {
  Matrix m{};
  m[0] = m[5] = m[10] = m[15] = 1.0;
  return m;
}

}  // namespace vexo
