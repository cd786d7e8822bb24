#include "scenefile/scene_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>

#include "scenefile/scene_reader.h"

namespace vexo {
namespace {

using Kind = JsonNode::Kind;

const KeyList kItemKeys = {"name", "type", "id", "channels", "actions", "keys", "children", "mesh", "source"};
const KeyList kSceneKeys = {"channels", "actions", "keys", "currentGroups"};
const KeyList kRootKeys = {"scene", "time", "items", "selection", "links", "itemList", "influences", "meshDeformers"};

// The keys an item of this type takes.
const KeyList& itemKeys(bool locator) {
  static const KeyList withLocatorKeys = [] {
    KeyList keys = kItemKeys;
    const KeyList& more = locatorItemKeys();
    keys.insert(keys.end(), more.begin(), more.end());
    return keys;
  }();
  return locator ? withLocatorKeys : kItemKeys;
}

}  // namespace

std::string inQuotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string describe(const JsonNode& node) {
  if (!node.isNumber()) return jsonKindName(node.kind);
  std::ostringstream out;
  out.precision(17);
  if (node.kind == Kind::Integer)
    out << node.integer;
  else
    out << node.number;
  return out.str();
}

std::string keyList(const KeyList& keys) {
  std::string list;
  for (std::size_t i = 0; i < keys.size(); ++i) list += (i ? ", " : "") + inQuotes(keys[i]);
  return list;
}

bool SceneReader::read(const JsonNode& root) {
  if (root.kind != Kind::Object) return fail(root.pos, "a scene file holds a JSON object, not " + describe(root));
  if (!checkKeys(root, kRootKeys, "at the top level")) return false;
  if (const JsonNode* items = member(root, "items")) {
    if (!expect(*items, Kind::Array, "\"items\"") || !collectIds(*items) || !readItems(*items, nullptr))
      return false;
  }
  if (const JsonNode* scene = member(root, "scene")) {
    if (!expect(*scene, Kind::Object, "\"scene\"") || !checkKeys(*scene, kSceneKeys, "in \"scene\"") ||
        !readItemBody(*scene, scene_.sceneItem()))
      return false;
  }
  if (!resolveAnimRefs()) return false;
  if (const JsonNode* scene = member(root, "scene"))
    if (const JsonNode* groups = member(*scene, "currentGroups"); groups && !readCurrentGroups(*groups)) return false;
  if (const JsonNode* time = member(root, "time")) {
    if (!time->isNumber()) return fail(time->pos, "\"time\" takes a number of seconds, not " + describe(*time));
    scene_.setTime(time->number);
  }
  if (JsonError e; !meshes_.resolveSources(e)) return fail(e.pos, e.message);
  if (!resolveShadingRefs()) return false;
  if (!checkActions() || !checkActiveActions()) return false;
  if (const JsonNode* selection = member(root, "selection"); selection && !readSelection(*selection)) return false;
  if (const JsonNode* links = member(root, "links"); links && !readLinks(*links)) return false;
  if (const JsonNode* list = member(root, "itemList"); list && !readItemList(*list)) return false;
  if (const JsonNode* node = member(root, "influences"); node && !readInfluences(*node)) return false;
  if (const JsonNode* node = member(root, "meshDeformers"); node && !readMeshDeformers(*node)) return false;
  return true;
}

bool SceneReader::fail(TextPos pos, const std::string& message) {
  error_ = fileName_ + ":" + std::to_string(pos.line) + ":" + std::to_string(pos.column) + ": " + message;
  return false;
}

bool SceneReader::expect(const JsonNode& node, Kind kind, const std::string& what) {
  if (node.kind == kind) return true;
  return fail(node.pos, what + " takes " + jsonKindName(kind) + ", not " + describe(node));
}

const JsonNode* SceneReader::member(const JsonNode& object, std::string_view key) {
  for (const JsonMember& m : object.members)
    if (m.key == key) return &m.value;
  return nullptr;
}

// Unknown and repeated keys are errors, so a misspelt key never goes unnoticed.
bool SceneReader::checkKeys(const JsonNode& object, const KeyList& allowed, const std::string& where) {
  std::set<std::string_view> seen;
  for (const JsonMember& m : object.members) {
    bool known = false;
    for (const char* key : allowed) known = known || m.key == key;
    if (!known)
      return fail(m.keyPos, "unknown key " + inQuotes(m.key) + " " + where + "; expected one of " + keyList(allowed));
    if (!seen.insert(m.key).second) return fail(m.keyPos, "duplicate key " + inQuotes(m.key));
  }
  return true;
}

bool SceneReader::reserveId(const JsonNode& id) {
  if (id.kind != Kind::String) return true;  // reported where the item is read
  if (!ids_.insert(id.text).second) return fail(id.pos, "duplicate id " + inQuotes(id.text));
  return true;
}

std::string SceneReader::freeIdent(const std::string& base) {
  return uniqueIdent(
      base, [this](const std::string& candidate) { return scene_.findIdent(candidate) || ids_.count(candidate); },
      &nextSuffix_[base]);
}

// Explicit ids are gathered first, so that items named later cannot take them as generated idents.
bool SceneReader::collectIds(const JsonNode& items) {
  for (const JsonNode& item : items.elements) {
    if (item.kind != Kind::Object) continue;
    if (const JsonNode* id = member(item, "id"); id && !reserveId(*id)) return false;
    if (!collectTransformIds(item)) return false;
    for (const char* key : {"children", "layers"})
      if (const JsonNode* children = member(item, key); children && children->kind == Kind::Array)
        if (!collectIds(*children)) return false;
  }
  return true;
}

bool SceneReader::readItems(const JsonNode& items, Item* parent) {
  for (const JsonNode& node : items.elements)
    if (!readItem(node, parent)) return false;
  return true;
}

bool SceneReader::readItem(const JsonNode& node, Item* parent) {
  if (!expect(node, Kind::Object, "an item")) return false;
  const JsonNode* name = member(node, "name");
  const JsonNode* type = member(node, "type");
  const JsonNode* id = member(node, "id");
  const TypeCode code = type && type->kind == Kind::String ? scene_.types().find(type->text) : kNoType;
  const bool locator = scene_.locatorTypes().isLocator(code);
  // A misspelt type would otherwise show as keys its type does not take.
  if (type && type->kind == Kind::String && code == kNoType)
    return fail(type->pos, "unknown item type " + inQuotes(type->text));
  if (code != kNoType && !locator && !checkNotLocatorKeys(node, type->text)) return false;
  const KeyList* keys = &itemKeys(locator);
  KeyList withShading;
  if (code != kNoType && !shadingItemKeys(scene_.types(), code).empty()) {
    const KeyList& more = shadingItemKeys(scene_.types(), code);
    withShading = *keys;
    withShading.insert(withShading.end(), more.begin(), more.end());
    keys = &withShading;
  }
  // Actors list their members, IK solvers their joints.
  const char* animKey = code == kNoType                                                    ? nullptr
                        : scene_.types().derives(code, scene_.types().find("actor"))      ? "members"
                        : scene_.types().derives(code, scene_.types().find("ikFullBody")) ? "joints"
                                                                                          : nullptr;
  KeyList withAnim;
  if (animKey) {
    withAnim = *keys;
    withAnim.push_back(animKey);
    keys = &withAnim;
  }
  if (!checkKeys(node, *keys, "in an item")) return false;
  if (!name) return fail(node.pos, "item has no \"name\"");
  if (!expect(*name, Kind::String, "\"name\"")) return false;
  if (name->text.empty()) return fail(name->pos, "item name is empty");
  if (!type) return fail(node.pos, "item " + inQuotes(name->text) + " has no \"type\"");
  if (!expect(*type, Kind::String, "\"type\"")) return false;

  std::string ident;
  if (id) {
    if (!expect(*id, Kind::String, "\"id\"")) return false;
    if (id->text.empty()) return fail(id->pos, "item id is empty");
    ident = id->text;
  } else {
    ident = freeIdent(name->text);
  }
  // The reader builds each locator's stack itself, with idents that avoid the file's ids.
  Item* item = scene_.addItem(code, name->text, ident, parent, StackStart::Empty);
  if (!item) return fail(id ? id->pos : name->pos, "id " + inQuotes(ident) + " is already taken");
  if (locator && !readTransformStack(node, *item)) return false;
  if (!readItemBody(node, *item) || !noteAnimRefs(node, *item)) return false;
  if (JsonError e; !meshes_.readItem(node, *item, e)) return fail(e.pos, e.message);
  if (!readShadingFields(node, *item)) return false;
  if (const JsonNode* children = member(node, "children")) {
    if (!expect(*children, Kind::Array, "\"children\"") || !readItems(*children, item)) return false;
  }
  return true;
}

bool SceneReader::readItemBody(const JsonNode& node, Item& item) {
  if (const JsonNode* channels = member(node, "channels")) {
    if (!readChannels(*channels, item, kSetupAction)) return false;
  }
  if (const JsonNode* actions = member(node, "actions")) {
    if (!expect(*actions, Kind::Object, "\"actions\"")) return false;
    std::set<std::string_view> seen;
    for (const JsonMember& action : actions->members) {
      if (action.key == kSetupAction)
        return fail(action.keyPos, "setup values are written under \"channels\", not as an action");
      if (!seen.insert(action.key).second) return fail(action.keyPos, "duplicate key " + inQuotes(action.key));
      if (action.key != kEditAction) actionUses_.push_back({action.key, action.keyPos});
      if (!readChannels(action.value, item, action.key)) return false;
    }
  }
  if (const JsonNode* keys = member(node, "keys"); keys && !readKeys(*keys, item)) return false;
  return true;
}

bool SceneReader::readChannels(const JsonNode& channels, Item& item, std::string_view action) {
  if (!expect(channels, Kind::Object, "channel values")) return false;
  std::set<std::string_view> seen;
  for (const JsonMember& m : channels.members) {
    int index = scene_.types().findChannel(item.typeCode(), m.key);
    if (index < 0)
      return fail(m.keyPos, "unknown channel " + inQuotes(m.key) + " for item type " + inQuotes(item.type().name));
    if (!seen.insert(m.key).second) return fail(m.keyPos, "duplicate key " + inQuotes(m.key));
    if (scene_.locatorTypes().matrixChannelAt(item.typeCode(), static_cast<std::size_t>(index)))
      return fail(m.keyPos, "channel " + inQuotes(m.key) + " is computed from the transforms and cannot be set");
    Value value;
    if (!readValue(m.value, item.channel(static_cast<std::size_t>(index)), value)) return false;
    item.setValue(static_cast<std::size_t>(index), action, std::move(value));
  }
  return true;
}

bool SceneReader::readValue(const JsonNode& node, const ChannelDef& channel, Value& value) {
  const std::string what = "channel " + inQuotes(channel.name) + " takes ";
  switch (channel.type) {
    case ValueType::Integer:
      if (node.kind != Kind::Integer) return fail(node.pos, what + "an integer, not " + describe(node));
      if (node.integer < std::numeric_limits<std::int32_t>::min() ||
          node.integer > std::numeric_limits<std::int32_t>::max())
        return fail(node.pos, what + "a 32-bit integer, not " + describe(node));
      value = static_cast<std::int32_t>(node.integer);
      return true;
    case ValueType::Float:
      if (!node.isNumber()) return fail(node.pos, what + "a number, not " + describe(node));
      value = node.number;
      return true;
    case ValueType::Text:
      if (node.kind != Kind::String) return fail(node.pos, what + "a string, not " + describe(node));
      value = node.text;
      return true;
    case ValueType::Matrix:
      break;
  }
  if (node.kind != Kind::Array || node.elements.size() != 16) {
    std::string got = node.kind == Kind::Array ? "an array of " + std::to_string(node.elements.size())
                                               : describe(node);
    return fail(node.pos, what + "a matrix of 16 numbers, not " + got);
  }
  Matrix m{};
  for (std::size_t i = 0; i < 16; ++i) {
    const JsonNode& element = node.elements[i];
    if (!element.isNumber()) return fail(element.pos, "matrix element " + std::to_string(i) + " is " + describe(element) + ", not a number");
    m[i] = element.number;
  }
  value = m;
  return true;
}

// Action names other than "edit" are action clips, which may be declared anywhere in the file.
bool SceneReader::checkActions() {
  TypeCode clip = scene_.types().find("actionclip");
  std::set<std::string> clips;
  for (Item* item : scene_.itemsOfType(clip)) clips.insert(item->name());
  for (const ActionUse& use : actionUses_)
    if (!clips.count(use.name))
      return fail(use.pos, "unknown action " + inQuotes(use.name) + "; actions are \"edit\" and the names of \"actionclip\" items");
  return true;
}

bool SceneReader::readSelection(const JsonNode& selection) {
  if (!expect(selection, Kind::Array, "\"selection\"")) return false;
  for (const JsonNode& ref : selection.elements) {
    if (!expect(ref, Kind::String, "a selection entry")) return false;
    std::string problem;
    Item* item = findItemByRef(scene_, ref.text, &problem);
    if (!item) return fail(ref.pos, "cannot select: " + problem);
    scene_.select(*item);
  }
  return true;
}

bool readSceneText(std::string_view text, const std::string& fileName, Scene& scene, std::string& error,
                   bool quickMeshes) {
  // Editors may start a UTF-8 file with a byte-order mark; lines and columns count from after it.
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  SceneReader reader(text, fileName, scene);
  JsonRawReader meshes;
  if (quickMeshes) meshes = [&reader](std::size_t begin) { return reader.readMeshAhead(begin); };
  JsonNode root;
  JsonError syntax;
  if (!parseJson(text, root, syntax, isItemMeshValue, meshes)) {
    error = fileName + ":" + std::to_string(syntax.pos.line) + ":" + std::to_string(syntax.pos.column) + ": " +
            syntax.message;
    return false;
  }
  if (reader.read(root)) return true;
  error = reader.error();
  return false;
}

bool readSceneFile(const std::string& path, Scene& scene, std::string& error) {
  auto cannot = [&](const std::string& reason) {
    error = path + ": cannot read the scene file: " + reason;
    return false;
  };
  // Not blocking, so that a FIFO is refused below rather than waited on.
  const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return cannot(std::strerror(errno));
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{fd};
  struct stat info {};
  if (::fstat(fd, &info) != 0) return cannot(std::strerror(errno));
  if (S_ISDIR(info.st_mode)) return cannot("it is a folder");
  // A device or a pipe may never end.
  if (!S_ISREG(info.st_mode)) return cannot("it is not a regular file");
  const auto tooBig = [&] {
    return cannot("it is larger than the largest scene file, " + std::to_string(kMaxSceneFileSize) + " bytes");
  };
  if (static_cast<std::uint64_t>(info.st_size) > kMaxSceneFileSize) return tooBig();
  // Not zero-filled first, which would cost a tenth of the parse: the reads fill it.
  std::size_t capacity = static_cast<std::size_t>(info.st_size) + 1;
  std::unique_ptr<char[]> text(new char[capacity]);
  std::size_t size = 0;
  // The file may grow while it is read: read on to its end, within the limit.
  for (;;) {
    if (size == capacity) {
      if (size > kMaxSceneFileSize) return tooBig();
      const std::size_t larger = std::min<std::size_t>(kMaxSceneFileSize + 1, std::max<std::size_t>(2 * size, 4096));
      std::unique_ptr<char[]> grown(new char[larger]);
      std::memcpy(grown.get(), text.get(), size);
      text = std::move(grown);
      capacity = larger;
    }
    const ssize_t n = ::read(fd, text.get() + size, capacity - size);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return cannot(std::strerror(errno));
    if (n == 0) break;
    size += static_cast<std::size_t>(n);
  }
  if (size > kMaxSceneFileSize) return tooBig();
  return readSceneText(std::string_view(text.get(), size), path, scene, error);
}

}  // namespace vexo
