// The eleven integer settings of one save, read from host user values.
#pragma once

#include <cstdint>

struct ExportOptions {
  std::int32_t exportType = 1;               // 0 whole scene, 1 selection, 2 host item list
  std::int32_t geometry = 1;
  std::int32_t materials = 1;
  std::int32_t cameras = 1;
  std::int32_t animation = 1;
  std::int32_t morphMaps = 1;                // only 1 runs the skin phase
  std::int32_t skinnedMeshInWS = 1;
  std::int32_t tangentsBitangents = 0;
  std::int32_t indicesExport = 0;            // non-zero: 32-bit indices
  std::int32_t sampleAnimFpsMultiplier = 0;  // 1: sample at twice the frame rate
  std::int32_t exportActionType = 0;         // 0 timeline, 1 every action, 2 the active action
};

// One user value: its key, its default and the field it fills. The table
// order is the order in which the keys are read.
struct ExportOptionKey {
  const char* key;
  std::int32_t fallback;
  std::int32_t ExportOptions::*field;
};
extern const ExportOptionKey kExportOptionKeys[11];

// Reads every key once, in table order, through `getInt(key, default)`.
template <typename GetInt>
ExportOptions readExportOptions(GetInt&& getInt) {
  ExportOptions options;
  for (const ExportOptionKey& entry : kExportOptionKeys) options.*entry.field = getInt(entry.key, entry.fallback);
  return options;
}
