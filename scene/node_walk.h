// The node walk: turns the root items and (by export type) their children
// into glTF nodes, depth first, with meshes, cameras and transforms.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "gltf/document.h"
#include "host/scene.h"
#include "item_types.h"
#include "plugin/export_options.h"
#include "plugin/gltf_log_msg.h"

// Builds (or finds) the glTF mesh of a mesh item; GltfDocument::kNone for none.
class MeshSource {
 public:
  virtual ~MeshSource() = default;
  virtual std::uint32_t exportMesh(const CVxUser_Item& item) = 0;
};

// Each exported item's node, for the phases that refer to nodes.
class ItemNodeMap {
 public:
  void add(const CVxUser_Item& item, std::uint32_t node) { nodes_[item.raw()] = node; }
  std::uint32_t find(const CVxUser_Item& item) const {
    auto found = nodes_.find(item.raw());
    return found == nodes_.end() ? GltfDocument::kNone : found->second;
  }
  std::size_t size() const { return nodes_.size(); }

 private:
  std::unordered_map<IVxItem*, std::uint32_t> nodes_;
};

struct NodeWalkContext {
  const CVxUser_Scene& scene;
  const CVxChannelRead& read;  // the current evaluation
  const ExportOptions& options;
  const ItemTypes& types;
  GltfLogMsg& log;
  GltfDocument& document;
  std::uint32_t documentRoot;
  MeshSource* meshes;  // null: no mesh export
  ItemNodeMap& itemNodes;
};

// VXR_FAILED when an item could not be taken from the walk ("Failed to set item").
VxResult walkNodes(NodeWalkContext& context, const std::vector<CVxUser_Item>& rootItems);

// Sets the node's matrix from the item's world or local matrix.
VxResult chooseTransform(NodeWalkContext& context, const CVxUser_Item& item, std::uint32_t node,
                         std::uint32_t parentNode);
