// Writes the binary blocks of buffer 0 and copies image files.
#pragma once

#include <string>
#include <vector>

#include "gltf/atomic_file.h"
#include "gltf/document_impl.h"

namespace gltf {

// Every block in order, each followed by its padding zero bytes. Image blocks
// take their bytes from their file. False (error recorded in `files`) on failure.
bool writeBlocks(const std::vector<Block>& blocks, StagedFile& out, StagedFiles& files);
// Copies `source` to `target` through a staged file; nothing to do when both
// are the same file already.
bool copyFile(const std::string& source, const std::string& target, StagedFiles& files);

}  // namespace gltf
