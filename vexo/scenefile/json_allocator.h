// The allocator the scene-file reader gives RapidJSON. RapidJSON's own hands
// out null when memory runs out and then writes through it; this one throws
// std::bad_alloc, which `vexo` reports as running out of memory.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

#include <rapidjson/document.h>
#include <rapidjson/reader.h>

namespace vexo {

class JsonAllocator {
 public:
  static const bool kNeedFree = true;
  void* Malloc(std::size_t size) { return size == 0 ? nullptr : checked(std::malloc(size)); }
  void* Realloc(void* original, std::size_t, std::size_t newSize) {
    if (newSize != 0) return checked(std::realloc(original, newSize));
    std::free(original);
    return nullptr;
  }
  static void Free(void* block) { std::free(block); }

 private:
  static void* checked(void* block) {
    if (!block) throw std::bad_alloc();
    return block;
  }
};

using JsonReader = rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator>;
using JsonPool = rapidjson::MemoryPoolAllocator<JsonAllocator>;
using JsonValue = rapidjson::GenericValue<rapidjson::UTF8<>, JsonPool>;
using JsonDocument = rapidjson::GenericDocument<rapidjson::UTF8<>, JsonPool, JsonAllocator>;

}  // namespace vexo
