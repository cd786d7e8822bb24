// The quick way through a mesh value: one pass over its text, numbers
// converted as they are met and stored straight in flat arrays, with no value
// tree in between.
//
// It takes only meshes that read without a fault, and only in the common
// spelling (no escapes in strings, a map's "type" before its values). For
// anything else it gives up, and the general reader (mesh_reader.cpp) reads
// the value as before, faults and their positions included.
#pragma once

#include <cstddef>
#include <string_view>

#include "mesh/mesh_data.h"

namespace vexo {

// Reads the mesh value that starts at `text[begin]` into `mesh`, which must be
// empty. Returns the offset just past the value's closing '}', or npos when it
// gives up; `mesh` is then unspecified.
std::size_t readMeshText(std::string_view text, std::size_t begin, MeshData& mesh);

}  // namespace vexo
