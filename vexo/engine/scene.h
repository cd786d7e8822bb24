// The scene: its items in scene order, the selection and the evaluation time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "animation/actors.h"
#include "deform/deform_graphs.h"
#include "engine/channel_links.h"
#include "engine/item.h"
#include "engine/item_types.h"
#include "engine/locator_types.h"
#include "engine/mesh_store.h"
#include "shading/shading_store.h"

namespace vexo {

// The selection type that holds items.
inline constexpr std::string_view kItemSelection = "item";

// `base` when `taken` says it is free, else "base (2)", "base (3)", ...
// With `next`, the numbers below *next are known taken and skipped, and
// *next moves past the one returned: many items of one name stay linear.
std::string uniqueIdent(std::string_view base, const std::function<bool(const std::string&)>& taken,
                        unsigned* next = nullptr);

class Scene;

// An item named by a user: the item with that ident, else the only item with
// that name, else, for "LOCATOR/NAME", the only transform item called NAME in
// the stack of the locator LOCATOR names (by ident or only name; each "/" is
// tried, the last first). Null when there is none or the name is shared;
// `problem` then says which. Each try is one hash lookup, so the time grows
// with the reference's length, not with the scene's size.
Item* findItemByRef(const Scene& scene, std::string_view ref, std::string* problem);

// How a new locator's transform stack starts.
enum class StackStart {
  Default,  // its main "Scale", "Rotation" and "Position" items, applied in that order
  Empty,    // nothing yet: the caller builds the stack with addTransform
};

class Scene {
 public:
  // A new scene holds only its scene item, of type "scene", which `types` must have.
  explicit Scene(const TypeRegistry& types = TypeRegistry::builtin());
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  const TypeRegistry& types() const { return *types_; }
  const LocatorTypes& locatorTypes() const { return locatorTypes_; }
  Item& sceneItem() { return *items_.front(); }

  // Appends an item to the scene order, as the last child of `parent` when
  // one is given. An empty ident takes the name (the type name for an empty
  // name), made unique. A locator gets its transform stack as `stack` says.
  // Null when the type is unknown or the ident taken.
  Item* addItem(TypeCode type, std::string name, std::string ident = {}, Item* parent = nullptr,
                StackStart stack = StackStart::Default);

  // Appends a transform item ("translation", "rotation", "scale", "transform"
  // or "shear") to the end of a locator's stack. In scene order it follows the
  // locator's other transform items; it has no parent. An empty ident becomes
  // "LOCATOR-IDENT/NAME", made unique. With `main` it becomes that main
  // transform, which must be of the matching type and not yet taken. Null when
  // any of this does not hold or the ident is taken.
  Item* addTransform(Item& locator, TypeCode type, std::string name, std::string ident = {},
                     std::optional<MainTransform> main = std::nullopt);

  std::size_t itemCount() const { return items_.size(); }
  Item& item(std::size_t index) const { return *items_[index]; }  // scene order
  Item* findIdent(std::string_view ident) const;
  // The one item with this name; null when none or several have it, and then
  // `count`, when given, says how many.
  Item* findName(std::string_view name, std::size_t* count = nullptr) const;
  // The length of the longest ident or name: no longer text can name an item.
  std::size_t longestName() const { return longestName_; }
  // Items whose type derives from `type`, in scene order; kNoType gives every item.
  std::vector<Item*> itemsOfType(TypeCode type) const;

  // Appends to a selection; an item already selected keeps its place.
  void select(Item& item, std::string_view selectionType = kItemSelection);
  // Empty for a selection type nothing was selected in.
  const std::vector<Item*>& selection(std::string_view selectionType = kItemSelection) const;

  // Links between channels of this scene's items (see ChannelLinks::add).
  bool addLink(const ChannelLink& link, std::string* problem) {
    ++valueRevision_;
    return links_.add(link, problem);
  }
  const ChannelLinks& links() const { return links_; }

  // The ordered list of items a host hands to "export these items"; an item
  // already listed keeps its place.
  void addToItemList(Item& item);
  const std::vector<Item*>& itemList() const { return itemList_; }

  // The meshes of the scene's "mesh", "triSurf" and "meshInst" items.
  MeshStore& meshes() { return meshes_; }
  // Image clips' files and the clips and texture locators of image maps.
  ShadingStore& shading() { return shading_; }
  const ShadingStore& shading() const { return shading_; }

  // Turns an item's children around, last first; scene order stays as it is.
  // Shader-tree files list a layer's layers top first, the reverse of child order.
  void reverseChildren(Item& parent);
  // Deformers' links to their meshes and joints.
  DeformGraphs& deformGraphs() { return deformGraphs_; }
  const DeformGraphs& deformGraphs() const { return deformGraphs_; }

  // Actors' items, IK chains and the "currentGroups" list.
  ActorStore& actors() { return actors_; }
  const ActorStore& actors() const { return actors_; }

  double time() const { return time_; }
  void setTime(double time) { time_ = time; }

  // Changes whenever items are added, so views over the item list know when to refresh.
  std::uint64_t revision() const { return revision_; }
  // Changes whenever anything an evaluation reads may have changed: items,
  // links, any item's values. Lets an evaluation keep what it computed.
  std::uint64_t valueRevision() const { return valueRevision_; }

 private:
  // Inserts an item right after `after` in scene order, or at the end.
  Item* insertItem(const ItemType& type, std::string name, std::string ident, const Item* after);

  const TypeRegistry* types_;
  LocatorTypes locatorTypes_;
  std::vector<std::unique_ptr<Item>> items_;
  std::unordered_map<std::string, Item*> byIdent_;
  struct Named {
    Item* item;
    std::size_t count;
  };
  std::unordered_map<std::string, Named> byName_;
  std::size_t longestName_ = 0;
  std::map<std::string, std::vector<Item*>, std::less<>> selections_;
  ChannelLinks links_;
  std::vector<Item*> itemList_;
  MeshStore meshes_{*types_};
  ShadingStore shading_;
  DeformGraphs deformGraphs_;
  ActorStore actors_;
  double time_ = 0.0;
  std::uint64_t revision_ = 0;
  std::uint64_t valueRevision_ = 0;
};

}  // namespace vexo
