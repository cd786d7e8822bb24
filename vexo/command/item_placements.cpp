#include "command/item_placements.h"

#include "engine/evaluation.h"
#include "engine/scene.h"

namespace vexo {

std::vector<ItemPlacement> itemPlacements(const Scene& scene, std::string_view action, double time) {
  Evaluation evaluation(scene, action, time);
  std::vector<ItemPlacement> placements;
  placements.reserve(scene.itemCount());
  for (std::size_t i = 0; i < scene.itemCount(); ++i) {
    const Item& item = scene.item(i);
    ItemPlacement placement{item.name(), item.ident(), item.type().name, std::nullopt, std::nullopt};
    if (item.parent()) placement.parent = item.parent()->ident();
    Matrix world{};
    if (evaluation.matrix(item, MatrixChannel::World, world)) placement.world = world;
    placements.push_back(std::move(placement));
  }
  return placements;
}

}  // namespace vexo
