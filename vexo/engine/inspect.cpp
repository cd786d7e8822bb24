#include "engine/inspect.h"

#include "engine/evaluation.h"

namespace vexo {

bool isSceneAction(const Scene& scene, std::string_view action) {
  if (action == kSetupAction || action == kEditAction) return true;
  for (const Item* clip : scene.itemsOfType(scene.types().find("actionclip")))
    if (clip->name() == action) return true;
  return false;
}

bool inspectScene(const Scene& scene, std::string_view action, double time, std::vector<ItemPlacement>& items,
                  std::string& problem) {
  if (!isSceneAction(scene, action)) {
    problem = "unknown action \"" + std::string(action) + "\"; actions are \"setup\", \"edit\" and the names of "
              "\"actionclip\" items";
    return false;
  }
  Evaluation evaluation(scene, action, time);
  items.clear();
  items.reserve(scene.itemCount());
  for (std::size_t i = 0; i < scene.itemCount(); ++i) {
    const Item& item = scene.item(i);
    ItemPlacement placement{item.name(), item.ident(), item.type().name, std::nullopt, std::nullopt};
    if (item.parent()) placement.parentIdent = item.parent()->ident();
    Matrix m;
    const bool ok = scene.locatorTypes().isLocator(item.typeCode())
                        ? evaluation.matrix(item, MatrixChannel::World, m)
                        : evaluation.hierarchyParentWorld(item, m);
    if (ok) placement.world = m;
    items.push_back(std::move(placement));
  }
  return true;
}

}  // namespace vexo
