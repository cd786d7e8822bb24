// Reads scene files (JSON, described in docs/scene-format.md) into a Scene.
#pragma once

#include <string>
#include <string_view>

#include "engine/scene.h"

namespace vexo {

// Fills a new scene from a file. On failure returns false with one line in
// `error`: "FILE:LINE:COLUMN: what is wrong", or "FILE: why it cannot be read".
// The scene may then hold part of the file.
bool readSceneFile(const std::string& path, Scene& scene, std::string& error);

// The same for text already in memory; `fileName` only appears in errors.
bool readSceneText(std::string_view text, const std::string& fileName, Scene& scene, std::string& error);

}  // namespace vexo
