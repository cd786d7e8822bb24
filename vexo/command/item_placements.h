// What `vexo inspect` shows of each item: its identity, its parent and where
// the host places it. A thin view over the engine, kept to one function so
// that an engine-level equivalent can take its place.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/value.h"

namespace vexo {

class Scene;

struct ItemPlacement {
  std::string name;
  std::string id;
  std::string type;
  std::optional<std::string> parent;  // the parent's id
  std::optional<Matrix> world;        // locators only, row-major as the host holds it
};

// Every item in scene order, its world matrix as it evaluates in `action` at
// `time`; no matrix for items that are no locator or whose matrix depends on itself.
std::vector<ItemPlacement> itemPlacements(const Scene& scene, std::string_view action, double time);

}  // namespace vexo
