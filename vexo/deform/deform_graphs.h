// The scene graphs that tie deformers to meshes and joints: named lists of
// links from one item to others, kept in the order they were added.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vexo {

class Item;

// A mesh item's deformers, in the order they apply.
inline constexpr std::string_view kDeformersGraph = "deformers";
// The mesh an influence deforms, when the influence names it itself.
inline constexpr std::string_view kDeformTargetGraph = "deformTarget";
// The joint locator an influence binds.
inline constexpr std::string_view kDeformJointGraph = "deformJoint";

class DeformGraphs {
 public:
  // Appends a link; false (nothing added) when `from` already links to `to` in that graph.
  bool link(std::string_view graph, Item& from, Item& to);
  // The item's links in the graph, or null when it has none there.
  const std::vector<Item*>* links(std::string_view graph, const Item& from) const;

 private:
  using Links = std::unordered_map<const Item*, std::vector<Item*>>;
  std::map<std::string, Links, std::less<>> graphs_;
};

}  // namespace vexo
