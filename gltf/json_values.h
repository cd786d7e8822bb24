// The JSON value types of the document and the helpers that build its numbers
// and strings the one way the output wants them.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include <rapidjson/document.h>

namespace gltf {

// RapidJSON's own base allocator hands out null when memory runs out and then
// writes through it; this one throws std::bad_alloc, which the save turns into
// a failed export.
class ThrowingAllocator {
 public:
  static const bool kNeedFree = true;
  void* Malloc(std::size_t size) {
    if (size == 0) return nullptr;
    return checked(std::malloc(size));
  }
  void* Realloc(void* original, std::size_t, std::size_t newSize) {
    if (newSize == 0) {
      std::free(original);
      return nullptr;
    }
    return checked(std::realloc(original, newSize));
  }
  static void Free(void* block) { std::free(block); }

 private:
  static void* checked(void* block) {
    if (!block) throw std::bad_alloc();
    return block;
  }
};

using Allocator = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;
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
