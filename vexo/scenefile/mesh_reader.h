// The mesh side of scene-file items: the "mesh" of a "mesh" or "triSurf"
// item (points, polygons, material tags, smoothing angle and vertex maps)
// and the "source" of a "meshInst" item.
//
// A mesh can hold millions of numbers, more than the positioned tree should
// carry, so the tree leaves items' "mesh" values raw (see isItemMeshValue)
// and they are read here. Most are read during the parse already, straight
// from their text (readAhead, see mesh_text_reader.h); the others, those with
// a fault among them, are parsed here into a compact DOM. Positions are looked
// up only for a message, by a second pass over the mesh's text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mesh/mesh_data.h"

#include "engine/scene.h"
#include "scenefile/json_tree.h"

namespace vexo {

// The parse rule (a JsonRawRule) that leaves the "mesh" value of every item
// under "items" and "children" raw.
bool isItemMeshValue(const std::vector<JsonNode>& open, std::string_view key);

class MeshReader {
 public:
  // `text` is the whole scene file as it was parsed.
  MeshReader(std::string_view text, Scene& scene) : text_(text), scene_(scene) {}

  // A JsonRawReader for the parse: reads the mesh value at `begin` whole when
  // it can, and keeps it for its item.
  std::size_t readAhead(std::size_t begin);

  // Reads an item's "mesh" into the item's mesh and notes its "source", when
  // it has them. On failure `error` tells where and what.
  bool readItem(const JsonNode& node, Item& item, JsonError& error);
  // Gives every instance its source's mesh, once all items are read. A
  // source named by an instance is followed to the mesh it shows.
  bool resolveSources(JsonError& error);

 private:
  struct SourceRef {
    Item* instance;
    std::string ref;
    TextPos pos;
  };

  std::string_view text_;
  Scene& scene_;
  std::vector<SourceRef> sources_;
  std::unordered_map<std::size_t, MeshData> readAhead_;  // by the offset of the mesh value
};

}  // namespace vexo
