#include "engine/scene.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vexo {

std::string uniqueIdent(std::string_view base, const std::function<bool(const std::string&)>& taken) {
  std::string ident(base);
  for (unsigned n = 2; taken(ident); ++n) ident = std::string(base) + " (" + std::to_string(n) + ")";
  return ident;
}

Item* findItemByRef(const Scene& scene, std::string_view ref, std::string* problem) {
  if (Item* item = scene.findIdent(ref)) return item;
  Item* found = nullptr;
  unsigned count = 0;
  for (std::size_t i = 0; i < scene.itemCount(); ++i) {
    if (scene.item(i).name() == ref) {
      found = &scene.item(i);
      ++count;
    }
  }
  if (count == 1) return found;
  if (problem) {
    *problem = count == 0 ? "no item \"" + std::string(ref) + "\""
                          : std::to_string(count) + " items are named \"" + std::string(ref) + "\"; name one by its id";
  }
  return nullptr;
}

Scene::Scene(const TypeRegistry& types) : types_(&types) {
  if (!addItem(types.find("scene"), "Scene")) throw std::logic_error("the item types have no \"scene\" type");
}

Item* Scene::addItem(TypeCode type, std::string name, std::string ident, Item* parent) {
  const ItemType* itemType = types_->type(type);
  if (!itemType) return nullptr;
  if (ident.empty()) {
    ident = uniqueIdent(name.empty() ? itemType->name : name,
                        [this](const std::string& id) { return byIdent_.count(id) != 0; });
  } else if (byIdent_.count(ident)) {
    return nullptr;
  }
  items_.push_back(std::make_unique<Item>(*itemType, std::move(name), std::move(ident)));
  Item* item = items_.back().get();
  byIdent_.emplace(item->ident(), item);
  if (parent) {
    item->parent_ = parent;
    parent->children_.push_back(item);
  }
  ++revision_;
  return item;
}

Item* Scene::findIdent(std::string_view ident) const {
  auto it = byIdent_.find(std::string(ident));
  return it == byIdent_.end() ? nullptr : it->second;
}

std::vector<Item*> Scene::itemsOfType(TypeCode type) const {
  std::vector<Item*> result;
  for (const auto& item : items_)
    if (type == kNoType || types_->derives(item->typeCode(), type)) result.push_back(item.get());
  return result;
}

void Scene::select(Item& item, std::string_view selectionType) {
  auto it = selections_.find(selectionType);
  if (it == selections_.end()) it = selections_.emplace(std::string(selectionType), std::vector<Item*>{}).first;
  std::vector<Item*>& selected = it->second;
  if (std::find(selected.begin(), selected.end(), &item) == selected.end()) selected.push_back(&item);
}

const std::vector<Item*>& Scene::selection(std::string_view selectionType) const {
  static const std::vector<Item*> kEmpty;
  auto it = selections_.find(selectionType);
  return it == selections_.end() ? kEmpty : it->second;
}

}  // namespace vexo
