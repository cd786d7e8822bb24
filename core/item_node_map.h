// Each exported item's node, for the phases that refer to nodes by item.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "gltf/document.h"
#include "host/item.h"

class ItemNodeMap {
 public:
  void add(const CVxUser_Item& item, std::uint32_t node) { nodes_[item.key()] = node; }
  // The item's node, or GltfDocument::kNone when it got none.
  std::uint32_t find(const CVxUser_Item& item) const {
    const auto found = nodes_.find(item.key());
    return found == nodes_.end() ? GltfDocument::kNone : found->second;
  }

 private:
  std::unordered_map<const void*, std::uint32_t> nodes_;
};
