// Reads scene files (JSON, described in docs/scene-format.md) into a Scene.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/scene.h"

namespace vexo {

// The largest scene file read, 2 GiB: line and column numbers and the mesh
// reader's array sizes are 32-bit, and a bigger file is no scene written on purpose.
inline constexpr std::uint64_t kMaxSceneFileSize = std::uint64_t(1) << 31;

// Fills a new scene from a file, which must be a regular file (or a link to
// one) of at most kMaxSceneFileSize bytes. On failure returns false with one line in
// `error`: "FILE:LINE:COLUMN: what is wrong", or "FILE: why it cannot be read".
// The scene may then hold part of the file.
bool readSceneFile(const std::string& path, Scene& scene, std::string& error);

// The same for text already in memory; `fileName` only appears in errors.
// Without `quickMeshes` every mesh goes through the general reader, which the
// quick one must match.
bool readSceneText(std::string_view text, const std::string& fileName, Scene& scene, std::string& error,
                   bool quickMeshes = true);

}  // namespace vexo
