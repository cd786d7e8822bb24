// The scene: its items in scene order, the selection and the evaluation time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/item.h"
#include "engine/item_types.h"
#include "engine/mesh_store.h"

namespace vexo {

// The selection type that holds items.
inline constexpr std::string_view kItemSelection = "item";

// `base` when `taken` says it is free, else "base (2)", "base (3)", ...
std::string uniqueIdent(std::string_view base, const std::function<bool(const std::string&)>& taken);

class Scene;

// An item named by a user: the item with that ident, else the only item with
// that name. Null when there is none or the name is shared; `problem` then says which.
Item* findItemByRef(const Scene& scene, std::string_view ref, std::string* problem);

class Scene {
 public:
  // A new scene holds only its scene item, of type "scene", which `types` must have.
  explicit Scene(const TypeRegistry& types = TypeRegistry::builtin());
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  const TypeRegistry& types() const { return *types_; }
  Item& sceneItem() { return *items_.front(); }

  // Appends an item to the scene order, as the last child of `parent` when
  // one is given. An empty ident takes the name (the type name for an empty
  // name), made unique. Null when the type is unknown or the ident taken.
  Item* addItem(TypeCode type, std::string name, std::string ident = {}, Item* parent = nullptr);

  std::size_t itemCount() const { return items_.size(); }
  Item& item(std::size_t index) const { return *items_[index]; }  // scene order
  Item* findIdent(std::string_view ident) const;
  // Items whose type derives from `type`, in scene order; kNoType gives every item.
  std::vector<Item*> itemsOfType(TypeCode type) const;

  // Appends to a selection; an item already selected keeps its place.
  void select(Item& item, std::string_view selectionType = kItemSelection);
  // Empty for a selection type nothing was selected in.
  const std::vector<Item*>& selection(std::string_view selectionType = kItemSelection) const;

  // The meshes of the scene's "mesh", "triSurf" and "meshInst" items.
  MeshStore& meshes() { return meshes_; }

  double time() const { return time_; }
  void setTime(double time) { time_ = time; }

  // Changes whenever items are added, so views over the item list know when to refresh.
  std::uint64_t revision() const { return revision_; }

 private:
  const TypeRegistry* types_;
  std::vector<std::unique_ptr<Item>> items_;
  std::unordered_map<std::string, Item*> byIdent_;
  std::map<std::string, std::vector<Item*>, std::less<>> selections_;
  MeshStore meshes_{*types_};
  double time_ = 0.0;
  std::uint64_t revision_ = 0;
};

}  // namespace vexo
