// The JSON value types of the document and the helpers that build its numbers
// and strings the one way the output wants them.
#pragma once

#include <cstddef>
#include <string>

#include <rapidjson/document.h>

namespace gltf {

using Allocator = rapidjson::MemoryPoolAllocator<rapidjson::CrtAllocator>;
using Value = rapidjson::GenericValue<rapidjson::UTF8<>, Allocator>;

constexpr std::size_t kChunkSize = 65536;

// A factor or coordinate as the file holds it: rounded to single precision.
// JSON cannot carry NaN or infinity, so NaN becomes 0 and anything beyond the
// float range the largest float of its sign.
float toFloat(double v);

// The double of that float, the number type the JSON stores.
inline Value number(double v) { return Value(static_cast<double>(toFloat(v))); }

Value numbers(const double* v, std::size_t n, Allocator& allocator);
Value numbers(const float* v, std::size_t n, Allocator& allocator);

// Strings from the scene are copied; keys are static and only referenced.
inline Value text(const std::string& s, Allocator& allocator) {
  return Value(s.c_str(), static_cast<rapidjson::SizeType>(s.size()), allocator);
}

inline void addMember(Value& object, const char* key, Value value, Allocator& allocator) {
  object.AddMember(rapidjson::StringRef(key), value, allocator);
}

inline void addMember(Value& object, const char* key, unsigned value, Allocator& allocator) {
  object.AddMember(rapidjson::StringRef(key), Value(value), allocator);
}

}  // namespace gltf
