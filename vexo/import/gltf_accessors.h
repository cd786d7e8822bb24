// Reading glTF accessors into plain arrays, every offset checked against its
// buffer view and buffer, so that a broken file gives an error, never a read
// out of bounds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tinygltf {
class Model;
}

namespace vexo {

// The accessor's elements as floats, `components` per element (3 for VEC3).
// Normalised integers are scaled to 0..1 (or -1..1); other integers are
// converted as they are. Sparse substitutions are applied. False, with a
// message naming the accessor, when the accessor is of another type, points
// outside its data or holds a value that is not finite.
bool readAccessorFloats(const tinygltf::Model& model, int accessor, int components, std::vector<float>& out,
                        std::string& error);

// The accessor's scalar unsigned integers (indices, joint numbers in a VEC4
// with `components` 4). False as above, also for a float accessor.
bool readAccessorIndices(const tinygltf::Model& model, int accessor, int components, std::vector<std::uint32_t>& out,
                         std::string& error);

}  // namespace vexo
