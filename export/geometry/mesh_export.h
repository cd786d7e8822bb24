// The mesh export: one glTF mesh per host mesh, with a primitive per
// material tag, shared by every item that shows the same mesh.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "gltf/document.h"
#include "host/scene.h"
#include "plugin/export_options.h"
#include "plugin/gltf_log_msg.h"
#include "scene/node_walk.h"

// A primitive waiting for the material of its polygon tag.
struct PrimitiveTag {
  std::uint32_t mesh;
  std::uint32_t primitive;
  std::string tag;
};

class MeshExporter : public MeshSource {
 public:
  // `read` is the current evaluation, in which "visible" is read.
  MeshExporter(const CVxUser_Scene& scene, const CVxChannelRead& read, const ExportOptions& options, GltfLogMsg& log,
               GltfDocument& document);

  // The item's glTF mesh, built on first use; kNone when the item shows no mesh.
  std::uint32_t exportMesh(const CVxUser_Item& item) override;

  // The material tags of every exported primitive, and the distinct tags in
  // the order they were first met, for the materials phase.
  const std::vector<PrimitiveTag>& primitiveTags() const { return primitiveTags_; }
  const std::vector<std::string>& polygonTags() const { return polygonTags_; }

 private:
  const CVxUser_Scene& scene_;
  const CVxChannelRead& read_;
  const ExportOptions& options_;
  GltfLogMsg& log_;
  GltfDocument& document_;
  std::unordered_map<std::string, std::uint32_t> cache_;  // host mesh identity -> glTF mesh
  std::vector<PrimitiveTag> primitiveTags_;
  std::vector<std::string> polygonTags_;
};
