// What the top-level writer settles before it emits anything: the index each
// node handle, mesh and skin gets in the file, and the arrays built only now.
#pragma once

#include <cstdint>
#include <vector>

#include "gltf/document_impl.h"

namespace gltf {

struct WriteTables {
  std::vector<std::uint32_t> nodeIndex;  // per node handle; kNone for the root
  std::vector<std::uint32_t> meshIndex;  // per mesh; kNone for a mesh that is not written
  std::vector<std::uint32_t> skinIndex;  // per skin; kNone for a skin that is not written
  bool meshesDropped = false;
};

// Numbers the nodes depth first in pre-order from the root's children and
// builds the "nodes" array and the scene's root list.
void buildNodes(const GltfDocument::Impl& d, WriteTables& tables, Value& nodes, Value& sceneNodes,
                Allocator& allocator);
// Meshes and skins that would be invalid (no primitive, no joint) get kNone.
void numberMeshesAndSkins(const GltfDocument::Impl& d, WriteTables& tables);
Value buildMeshes(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator);
Value buildAnimations(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator);
Value buildSkins(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator);

}  // namespace gltf
