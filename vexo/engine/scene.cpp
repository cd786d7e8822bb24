#include "engine/scene.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vexo {

std::string uniqueIdent(std::string_view base, const std::function<bool(const std::string&)>& taken,
                        unsigned* next) {
  // Candidate 1 is the base itself, candidate k > 1 "base (k)".
  unsigned k = next ? std::max(*next, 1u) : 1u;
  std::string ident;
  for (;; ++k) {
    ident = k == 1 ? std::string(base) : std::string(base) + " (" + std::to_string(k) + ")";
    if (!taken(ident)) break;
  }
  if (next) *next = k + 1;
  return ident;
}

namespace {

// An item by ident or only name, without the "LOCATOR/NAME" form: a transform
// item has no stack, so LOCATOR never needs that form itself.
Item* findIdentOrName(const Scene& scene, std::string_view ref) {
  if (Item* item = scene.findIdent(ref)) return item;
  return scene.findName(ref);
}

// "LOCATOR/NAME": the one transform item called NAME in the stack of the
// locator LOCATOR names. Each "/" is tried as the separator, last one first;
// a part longer than any ident or name cannot name anything and is not looked up.
Item* findStackItemByRef(const Scene& scene, std::string_view ref) {
  const std::size_t longest = scene.longestName();
  if (ref.size() > 2 * longest + 1) return nullptr;
  for (std::size_t slash = ref.rfind('/'); slash != std::string_view::npos && slash > 0;
       slash = ref.rfind('/', slash - 1)) {
    const std::string_view name = ref.substr(slash + 1);
    if (name.size() > longest) break;  // and so for every earlier slash
    if (slash > longest) continue;
    const Item* locator = findIdentOrName(scene, ref.substr(0, slash));
    if (!locator) continue;
    Item* found = nullptr;
    unsigned count = 0;
    for (Item* transform : locator->transforms()) {
      if (transform->name() == name) {
        found = transform;
        ++count;
      }
    }
    if (count == 1) return found;
  }
  return nullptr;
}

}  // namespace

Item* findItemByRef(const Scene& scene, std::string_view ref, std::string* problem) {
  if (Item* item = scene.findIdent(ref)) return item;
  std::size_t count = 0;
  if (Item* found = scene.findName(ref, &count)) return found;
  if (count == 0) {
    if (Item* transform = findStackItemByRef(scene, ref)) return transform;
  }
  if (problem) {
    *problem = count == 0 ? "no item \"" + std::string(ref) + "\""
                          : std::to_string(count) + " items are named \"" + std::string(ref) + "\"; name one by its id";
  }
  return nullptr;
}

Scene::Scene(const TypeRegistry& types) : types_(&types), locatorTypes_(types) {
  if (!addItem(types.find("scene"), "Scene")) throw std::logic_error("the item types have no \"scene\" type");
}

Item* Scene::insertItem(const ItemType& type, std::string name, std::string ident, const Item* after) {
  auto position = items_.end();
  if (after && items_.back().get() != after) {
    auto found = std::find_if(items_.rbegin(), items_.rend(), [after](const auto& item) { return item.get() == after; });
    if (found != items_.rend()) position = found.base();
  }
  Item* item =
      items_.insert(position, std::make_unique<Item>(type, std::move(name), std::move(ident), &valueRevision_))->get();
  byIdent_.emplace(item->ident(), item);
  Named& named = byName_.try_emplace(item->name(), Named{item, 0}).first->second;
  ++named.count;
  longestName_ = std::max({longestName_, item->ident().size(), item->name().size()});
  ++revision_;
  ++valueRevision_;
  return item;
}

Item* Scene::addItem(TypeCode type, std::string name, std::string ident, Item* parent, StackStart stack) {
  const ItemType* itemType = types_->type(type);
  if (!itemType) return nullptr;
  if (ident.empty()) {
    ident = uniqueIdent(name.empty() ? itemType->name : name,
                        [this](const std::string& id) { return byIdent_.count(id) != 0; });
  } else if (byIdent_.count(ident)) {
    return nullptr;
  }
  Item* item = insertItem(*itemType, std::move(name), std::move(ident), nullptr);
  if (parent) {
    item->parent_ = parent;
    parent->children_.push_back(item);
  }
  if (stack == StackStart::Default && locatorTypes_.isLocator(type)) {
    addTransform(*item, locatorTypes_.transformType(TransformKind::Scale), "Scale", {}, MainTransform::Scale);
    addTransform(*item, locatorTypes_.transformType(TransformKind::Rotation), "Rotation", {}, MainTransform::Rotation);
    addTransform(*item, locatorTypes_.transformType(TransformKind::Translation), "Position", {},
                 MainTransform::Position);
  }
  return item;
}

Item* Scene::addTransform(Item& locator, TypeCode type, std::string name, std::string ident,
                          std::optional<MainTransform> main) {
  const ItemType* itemType = types_->type(type);
  const std::optional<TransformKind> kind = locatorTypes_.transformKind(type);
  if (!itemType || !kind || !locatorTypes_.isLocator(locator.typeCode())) return nullptr;
  if (main && (mainTransformKind(*main) != *kind || locator.mainTransform(*main))) return nullptr;
  if (ident.empty()) {
    ident = uniqueIdent(locator.ident() + "/" + name, [this](const std::string& id) { return byIdent_.count(id) != 0; });
  } else if (byIdent_.count(ident)) {
    return nullptr;
  }
  const Item* after = locator.transforms_.empty() ? &locator : locator.transforms_.back();
  Item* item = insertItem(*itemType, std::move(name), std::move(ident), after);
  item->stackOwner_ = &locator;
  locator.transforms_.push_back(item);
  if (main) locator.mainTransforms_[static_cast<int>(*main)] = item;
  return item;
}

void Scene::addToItemList(Item& item) {
  if (std::find(itemList_.begin(), itemList_.end(), &item) == itemList_.end()) itemList_.push_back(&item);
}

Item* Scene::findIdent(std::string_view ident) const {
  if (ident.size() > longestName_) return nullptr;
  auto it = byIdent_.find(std::string(ident));
  return it == byIdent_.end() ? nullptr : it->second;
}

Item* Scene::findName(std::string_view name, std::size_t* count) const {
  if (count) *count = 0;
  if (name.size() > longestName_) return nullptr;
  auto it = byName_.find(std::string(name));
  if (it == byName_.end()) return nullptr;
  if (count) *count = it->second.count;
  return it->second.count == 1 ? it->second.item : nullptr;
}

std::vector<Item*> Scene::itemsOfType(TypeCode type) const {
  std::vector<Item*> result;
  for (const auto& item : items_)
    if (type == kNoType || types_->derives(item->typeCode(), type)) result.push_back(item.get());
  return result;
}

void Scene::reverseChildren(Item& parent) {
  std::reverse(parent.children_.begin(), parent.children_.end());
  ++revision_;
  ++valueRevision_;
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
