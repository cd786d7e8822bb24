// The one export context: what every phase of a save receives. The saver owns
// it for its lifetime; each phase reads what it needs and fills its own part.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "animated_components.h"
#include "export_options.h"
#include "gltf/document.h"
#include "gltf_log_msg.h"
#include "host/scene.h"
#include "item_node_map.h"
#include "item_types.h"
#include "node_matrix.h"
#include "transform_record.h"

// Builds (or finds) the glTF mesh of a mesh item: GltfDocument::kNone for none.
// The driver hands the node walk the mesh phase through this.
class MeshSource {
 public:
  virtual ~MeshSource() = default;
  virtual std::uint32_t exportMesh(const CVxUser_Item& item) = 0;
};

// A node's transform as the node walk chose it: the stack analysis of its
// item and the placement rule that sampling must follow at every time.
struct NodeTransform {
  TransformAnalysis analysis;
  Placement rule = Placement::Local;
};

struct AnimatedItem {
  CVxUser_Item item;
  AnimatedComponents components;
};

// An item whose mesh the deformer phase may skin, with the node made for it.
struct DeformerEntry {
  CVxUser_Item item;
  std::uint32_t node;
};

struct ExportContext {
  GltfLogMsg log;
  ExportOptions options;
  CVxUser_Scene scene;
  // The scene's current evaluation ("edit" at the current time), opened once.
  CVxChannelRead edit;
  ItemTypes types{};
  // The item whose channels a phase is reading, as the saver tracks it.
  CVxUser_Item currentItem;

  std::unique_ptr<GltfDocument> document;
  std::uint32_t documentRoot = GltfDocument::kNone;

  // Filled by the scan: where the node walk starts.
  std::vector<CVxUser_Item> rootItems;
  // Filled by the node walk.
  ItemNodeMap itemNodes;
  std::unordered_map<std::uint32_t, NodeTransform> nodeTransforms;  // by node
  std::vector<DeformerEntry> deformers;

  // Filled by the scan: the actors of the "currentGroups" list and every action clip met.
  std::vector<CVxUser_Item> actors;
  std::vector<CVxUser_Item> actions;
  // Filled by the node walk when the timeline is exported: the items whose
  // position, rotation or scale moves in it ("edit"), in node order.
  std::vector<AnimatedItem> animatedItems;

  // Set by the driver for the node walk; null exports no geometry.
  MeshSource* meshes = nullptr;
};
