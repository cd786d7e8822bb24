// What the host holds for each item of a scene, in one action at one time:
// plain values for a command that shows them (`vexo inspect`).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/matrix.h"
#include "engine/scene.h"

namespace vexo {

struct ItemPlacement {
  std::string name;
  std::string ident;
  std::string type;                       // the item type's name
  std::optional<std::string> parentIdent;  // none for an item without a parent (transform items included)
  // Row-major, as the host holds it. For a locator, its world matrix; for any
  // other item, the frame a locator child of it inherits: the world matrix of
  // its nearest locator ancestor, the identity when it has none. Empty when
  // the matrix depends on itself (through links and parents).
  std::optional<Matrix> world;
};

// Whether `action` is one of the scene's actions: "setup", "edit" or the name of an "actionclip" item.
bool isSceneAction(const Scene& scene, std::string_view action);

// Every item of the scene, in scene order (each locator's transform items
// follow it), as it evaluates in `action` at `time`. False, with `problem`
// saying why, when the action is not one of the scene's.
bool inspectScene(const Scene& scene, std::string_view action, double time, std::vector<ItemPlacement>& items,
                  std::string& problem);

}  // namespace vexo
