// The scene-file reader's state and steps, shared by the files that read
// each part of a scene file: scene_file.cpp (items, channels, actions,
// selection) and locator_fields.cpp (transform stacks, links, item list).
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/scene.h"
#include "scenefile/json_tree.h"
#include "scenefile/mesh_reader.h"

namespace vexo {

using KeyList = std::vector<const char*>;

std::string inQuotes(std::string_view text);
// A JSON value for a message: numbers as written, anything else by its kind.
std::string describe(const JsonNode& node);
// "\"a\", \"b\", \"c\"".
std::string keyList(const KeyList& keys);
// The keys a locator item takes besides those of every item.
const KeyList& locatorItemKeys();
// The keys an item of a shader-tree type (a layer, an image map, an image clip)
// takes besides those of every item; empty for other types.
const KeyList& shadingItemKeys(const TypeRegistry& types, TypeCode type);

class SceneReader {
 public:
  // `text` is the parsed file, whose raw mesh values the mesh reader parses.
  SceneReader(std::string_view text, const std::string& fileName, Scene& scene)
      : fileName_(fileName), scene_(scene), meshes_(text, scene) {}

  bool read(const JsonNode& root);
  // The parse's JsonRawReader for items' meshes.
  std::size_t readMeshAhead(std::size_t begin) { return meshes_.readAhead(begin); }
  const std::string& error() const { return error_; }

 private:
  struct ActionUse {
    std::string name;
    TextPos pos;
  };

  // Messages and checks.
  bool fail(TextPos pos, const std::string& message);
  bool expect(const JsonNode& node, JsonNode::Kind kind, const std::string& what);
  static const JsonNode* member(const JsonNode& object, std::string_view key);
  bool checkKeys(const JsonNode& object, const KeyList& allowed, const std::string& where);
  // Reserves an explicit id, so that generated idents avoid it.
  bool reserveId(const JsonNode& id);
  std::string freeIdent(const std::string& base);

  // Items, channels and actions (scene_file.cpp).
  bool collectIds(const JsonNode& items);
  bool readItems(const JsonNode& items, Item* parent);
  bool readItem(const JsonNode& node, Item* parent);
  bool readItemBody(const JsonNode& node, Item& item);
  bool readChannels(const JsonNode& channels, Item& item, std::string_view action);
  bool readValue(const JsonNode& node, const ChannelDef& channel, Value& value);
  bool checkActions();
  bool readSelection(const JsonNode& selection);

  // Locators' transform stacks, links and the item list (locator_fields.cpp).
  bool collectTransformIds(const JsonNode& item);
  // Fails on a locator key given to an item of a type that is no locator.
  bool checkNotLocatorKeys(const JsonNode& node, const std::string& typeName);
  bool readTransformStack(const JsonNode& node, Item& locator);
  bool readStackShorthand(const JsonNode& node, Item& locator);
  bool readTransformList(const JsonNode& transforms, Item& locator);
  bool readTransform(const JsonNode& node, Item& locator);
  bool readVector(const JsonNode& node, const std::string& what, double (&values)[3]);
  bool readRotationOrder(const JsonNode& node, const std::string& what, int& order);
  Item* addTransform(Item& locator, const char* type, const std::string& name, const JsonNode* id,
                     std::optional<MainTransform> main, TextPos pos);
  void setVector(Item& item, const char* const (&channels)[3], const double (&values)[3], double factor);
  bool readLinks(const JsonNode& links);
  bool readChannelRef(const JsonNode& node, const std::string& what, Item*& item, std::size_t& channel);
  bool readItemList(const JsonNode& list);

  // Shader-tree layers, image clips' files and image maps' links (shading_fields.cpp).
  bool readShadingFields(const JsonNode& node, Item& item);
  bool readLayers(const JsonNode& layers, Item& parent);
  bool readClipFile(const JsonNode& file, Item& clip);
  // Links image maps to their clips and texture locators, once every item is read.
  bool resolveShadingRefs();
  Item* clipForImage(const JsonNode& image);
  std::string fullPath(const std::string& path) const;
  // Deformers' links to their joints and meshes (deform_fields.cpp).
  bool readInfluences(const JsonNode& influences);
  bool readMeshDeformers(const JsonNode& meshDeformers);
  Item* readItemRef(const JsonNode& node, const std::string& what);
  // Keys, actors' members, IK joints and "currentGroups" (anim_fields.cpp).
  bool readKeys(const JsonNode& keys, Item& item);
  bool keyedChannel(Item& item, const std::string& name, TextPos pos, Item*& owner, std::size_t& channel);
  bool readCurve(const JsonNode& node, const Item& owner, std::size_t channel, KeyCurve& curve);
  bool noteAnimRefs(const JsonNode& node, Item& item);
  bool resolveAnimRefs();
  bool readCurrentGroups(const JsonNode& list);
  bool checkActiveActions();

  const std::string& fileName_;
  Scene& scene_;
  MeshReader meshes_;
  std::set<std::string> ids_;
  // Per base of generated idents, the first suffix number that may be free.
  std::unordered_map<std::string, unsigned> nextSuffix_;
  std::vector<ActionUse> actionUses_;
  // An image map's "clip", "image" and "locator" values, resolved after all items.
  struct ShadingRefs {
    Item* layer;
    const JsonNode* clip;
    const JsonNode* image;
    const JsonNode* locator;
  };
  std::vector<ShadingRefs> shadingRefs_;
  // Actors' "members" and IK solvers' "joints", resolved once every item is read.
  struct AnimRefs {
    Item* item;
    const JsonNode* list;
    bool members;
  };
  std::vector<AnimRefs> animRefs_;
  std::unordered_map<const Item*, TextPos> actorPos_;
  std::string error_;
};

}  // namespace vexo
