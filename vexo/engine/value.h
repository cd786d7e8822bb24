// Channel values of the scene engine.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>

namespace vexo {

enum class ValueType { Integer, Float, Text, Matrix };

// 16 doubles, row-major with row vectors (translation in elements 12 to 14).
using Matrix = std::array<double, 16>;

// The alternatives follow ValueType's order, so index() names the type.
using Value = std::variant<std::int32_t, double, std::string, Matrix>;

inline ValueType valueTypeOf(const Value& value) { return static_cast<ValueType>(value.index()); }

// "integer", "float", "text" or "matrix".
const char* valueTypeName(ValueType type);

Matrix identityMatrix();

}  // namespace vexo
