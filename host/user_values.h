// Reading host user values with defaults.
#pragma once

#include <cstdint>

class CVxUserValues {
 public:
  // The value of an integer user value, or `fallback` when it does not exist
  // or does not read as an integer.
  static std::int32_t getInt(const char* key, std::int32_t fallback);
};
