// The mesh export: one glTF mesh per host mesh, with a primitive per
// material tag, shared by every item that shows the same mesh.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/export_context.h"

// A primitive waiting for the material of its polygon tag.
struct PrimitiveTag {
  std::uint32_t mesh;
  std::uint32_t primitive;
  std::string tag;
  std::string meshName;              // the item that made the mesh
  const std::vector<std::string>* uvMaps;  // the mesh's UV map names: TEXCOORD_n is uvMaps[n]
};

class MeshExporter : public MeshSource {
 public:
  explicit MeshExporter(ExportContext& context) : context_(context) {}

  // The item's glTF mesh, built on first use; kNone when the item shows no mesh.
  std::uint32_t exportMesh(const CVxUser_Item& item) override;

  // The material tags of every exported primitive, for the materials phase.
  const std::vector<PrimitiveTag>& primitiveTags() const { return primitiveTags_; }

  // The glTF mesh an item was given (also when it came from the cache);
  // kNone for an item that got none.
  std::uint32_t meshOf(const CVxUser_Item& item) const;
  // For each primitive of a glTF mesh, in primitive order, the host point
  // each of its vertices came from: what skin weights are written from.
  const std::vector<std::vector<std::uint32_t>>& vertexPoints(std::uint32_t mesh) const;

 private:
  ExportContext& context_;
  std::unordered_map<std::string, std::uint32_t> cache_;  // host mesh identity -> glTF mesh
  std::vector<PrimitiveTag> primitiveTags_;
  std::unordered_map<std::uint32_t, std::vector<std::string>> uvMaps_;  // by glTF mesh
  std::unordered_map<const void*, std::uint32_t> itemMeshes_;  // item key -> glTF mesh
  std::unordered_map<std::uint32_t, std::vector<std::vector<std::uint32_t>>> vertexPoints_;
};
