// What `vexo` tells after a save: the hint for an export that selects nothing,
// and the files the save left at the destination.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

class Scene;
class UserValues;

// The user value that picks what the savers export; 1 (the selected items)
// unless it holds another integer.
inline constexpr std::string_view kExportTypeKey = "sceneio.gltf.save.exportType";

// True when the save exports the selected items and nothing is selected:
// the export type is absent, 1, or no integer (the module then takes its
// default, 1), and the scene's item selection is empty.
bool exportsEmptySelection(const UserValues& values, const Scene& scene);

struct SavedFile {
  std::string path;
  std::uint64_t size = 0;
};

// The files a successful save through `server` ("gltf.bin" or "gltf.gltf")
// to `destination` consists of, as found on disk now: the ".glb"; or the
// ".gltf" (the destination's stem, everything before its last '.', plus
// ".gltf", as the savers name it) and every buffer and image file its "uri"s
// name beside it. Files that are not there are left out.
std::vector<SavedFile> savedFiles(std::string_view server, const std::string& destination);

// "%20" and the like turned back into bytes; a '%' without two hex digits stays.
std::string percentDecode(std::string_view uri);

}  // namespace vexo
