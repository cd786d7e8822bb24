// Scene-file fields of locators (their transform stacks), channel links and the item list.
#include <cmath>
#include <map>

#include "engine/matrix.h"
#include "scenefile/scene_reader.h"

namespace vexo {
namespace {

using Kind = JsonNode::Kind;
using Channels3 = const char* const[3];

const double kRadiansPerDegree = std::acos(-1.0) / 180.0;

Channels3 kPosition = {"pos.X", "pos.Y", "pos.Z"};
Channels3 kRotation = {"rot.X", "rot.Y", "rot.Z"};
Channels3 kScale = {"scl.X", "scl.Y", "scl.Z"};
Channels3 kShear = {"shr.XY", "shr.XZ", "shr.YZ"};

// The keys of a locator that build its stack from named parts.
const KeyList kShorthandKeys = {"position",      "rotation",       "rotationOrder", "scale",
                                "rotationPivot", "scalePivot",     "rotationOffset", "scaleOffset",
                                "preRotation",   "postRotation"};

// The stack the shorthand keys build, in the order it applies: a row's item is
// made when its key is given, and always for the three main transforms. The
// pivot compensations undo their pivot, so the pivot point stays in place.
struct ShorthandRow {
  const char* key;
  const char* type;
  const char* name;
  std::optional<MainTransform> main;
  Channels3& channels;
  double factor;  // from the file's numbers to channel values
};

const ShorthandRow kShorthandStack[] = {
    {"scalePivot", "transform", "ScalePivotCompensation", std::nullopt, kPosition, -1.0},
    {"scale", "scale", "Scale", MainTransform::Scale, kScale, 1.0},
    {"scalePivot", "translation", "ScalePivot", std::nullopt, kPosition, 1.0},
    {"scaleOffset", "translation", "ScaleOffset", std::nullopt, kPosition, 1.0},
    {"rotationPivot", "transform", "RotationPivotCompensation", std::nullopt, kPosition, -1.0},
    {"postRotation", "rotation", "RotationPost", std::nullopt, kRotation, kRadiansPerDegree},
    {"rotation", "rotation", "Rotation", MainTransform::Rotation, kRotation, kRadiansPerDegree},
    {"preRotation", "rotation", "RotationPre", std::nullopt, kRotation, kRadiansPerDegree},
    {"rotationPivot", "translation", "RotationPivot", std::nullopt, kPosition, 1.0},
    {"rotationOffset", "translation", "RotationOffset", std::nullopt, kPosition, 1.0},
    {"position", "translation", "Position", MainTransform::Position, kPosition, 1.0},
};

// What each transform type takes in a "transforms" element besides the keys every element takes.
struct TransformRow {
  TransformKind kind;
  KeyList keys;
  Channels3* values;  // the channels "values" sets, or null
  double factor;
};

const TransformRow kTransformRows[] = {
    {TransformKind::Translation, {"main", "values"}, &kPosition, 1.0},
    {TransformKind::Rotation, {"main", "values", "order"}, &kRotation, kRadiansPerDegree},
    {TransformKind::Scale, {"main", "values"}, &kScale, 1.0},
    {TransformKind::Transform, {"position", "rotation", "order", "scale"}, nullptr, 1.0},
    {TransformKind::Shear, {"values"}, &kShear, 1.0},
};

const KeyList kTransformKeys = {"type", "name", "id", "channels", "actions", "keys"};
const KeyList kLinkKeys = {"from", "to"};

bool isShorthandKey(std::string_view key) {
  for (const char* k : kShorthandKeys)
    if (key == k) return true;
  return false;
}

std::string orderNames() {
  KeyList names;
  for (int i = 0; i < kRotationOrderCount; ++i) names.push_back(rotationOrderName(static_cast<RotationOrder>(i)));
  return keyList(names);
}

}  // namespace

const KeyList& locatorItemKeys() {
  static const KeyList keys = [] {
    KeyList all = kShorthandKeys;
    all.push_back("transforms");
    return all;
  }();
  return keys;
}

bool SceneReader::collectTransformIds(const JsonNode& item) {
  const JsonNode* transforms = member(item, "transforms");
  if (!transforms || transforms->kind != Kind::Array) return true;
  for (const JsonNode& transform : transforms->elements) {
    if (transform.kind != Kind::Object) continue;
    if (const JsonNode* id = member(transform, "id"); id && !reserveId(*id)) return false;
  }
  return true;
}

bool SceneReader::checkNotLocatorKeys(const JsonNode& node, const std::string& typeName) {
  for (const JsonMember& m : node.members)
    for (const char* key : locatorItemKeys())
      if (m.key == key)
        return fail(m.keyPos, inQuotes(m.key) + " is for locators; item type " + inQuotes(typeName) + " is not one");
  return true;
}

bool SceneReader::readTransformStack(const JsonNode& node, Item& locator) {
  const JsonNode* transforms = member(node, "transforms");
  if (!transforms) return readStackShorthand(node, locator);
  for (const JsonMember& m : node.members)
    if (isShorthandKey(m.key))
      return fail(m.keyPos, inQuotes(m.key) + " cannot be given beside \"transforms\", which lists the whole stack");
  return readTransformList(*transforms, locator);
}

bool SceneReader::readStackShorthand(const JsonNode& node, Item& locator) {
  std::map<std::string_view, std::array<double, 3>> given;
  for (const JsonMember& m : node.members) {
    if (!isShorthandKey(m.key) || m.key == "rotationOrder") continue;
    double values[3];
    if (!readVector(m.value, inQuotes(m.key), values)) return false;
    given[m.key] = {values[0], values[1], values[2]};
  }
  int order = 0;
  const JsonNode* orderNode = member(node, "rotationOrder");
  if (orderNode && !readRotationOrder(*orderNode, "\"rotationOrder\"", order)) return false;

  for (const ShorthandRow& row : kShorthandStack) {
    auto values = given.find(row.key);
    if (!row.main && values == given.end()) continue;
    Item* item = addTransform(locator, row.type, row.name, nullptr, row.main, node.pos);
    if (!item) return false;
    if (values != given.end()) {
      const double v[3] = {values->second[0], values->second[1], values->second[2]};
      setVector(*item, row.channels, v, row.factor);
    }
    if (row.main == MainTransform::Rotation && orderNode) {
      const int channel = scene_.types().findChannel(item->typeCode(), "order");
      if (channel >= 0) item->setValue(static_cast<std::size_t>(channel), kSetupAction, order);
    }
  }
  return true;
}

bool SceneReader::readTransformList(const JsonNode& transforms, Item& locator) {
  if (!expect(transforms, Kind::Array, "\"transforms\"")) return false;
  for (const JsonNode& node : transforms.elements)
    if (!readTransform(node, locator)) return false;
  return true;
}

bool SceneReader::readTransform(const JsonNode& node, Item& locator) {
  if (!expect(node, Kind::Object, "a transform")) return false;
  const JsonNode* type = member(node, "type");
  if (!type) return fail(node.pos, "transform has no \"type\"");
  if (!expect(*type, Kind::String, "\"type\"")) return false;
  const TransformRow* row = nullptr;
  KeyList typeNames;
  for (const TransformRow& candidate : kTransformRows) {
    typeNames.push_back(transformTypeName(candidate.kind));
    if (type->text == transformTypeName(candidate.kind)) row = &candidate;
  }
  if (!row) return fail(type->pos, "unknown transform type " + inQuotes(type->text) + "; expected one of " + keyList(typeNames));
  KeyList keys = kTransformKeys;
  keys.insert(keys.end(), row->keys.begin(), row->keys.end());
  const std::string kindText = "a " + inQuotes(type->text) + " transform";
  if (!checkKeys(node, keys, "in " + kindText)) return false;

  const JsonNode* name = member(node, "name");
  if (!name) return fail(node.pos, kindText + " has no \"name\"");
  if (!expect(*name, Kind::String, "\"name\"")) return false;
  if (name->text.empty()) return fail(name->pos, "transform name is empty");
  const JsonNode* id = member(node, "id");
  if (id) {
    if (!expect(*id, Kind::String, "\"id\"")) return false;
    if (id->text.empty()) return fail(id->pos, "transform id is empty");
  }
  std::optional<MainTransform> main;
  if (const JsonNode* mainNode = member(node, "main")) {
    if (!expect(*mainNode, Kind::Bool, "\"main\"")) return false;
    for (int i = 0; i < kMainTransformCount && mainNode->boolean; ++i)
      if (mainTransformKind(static_cast<MainTransform>(i)) == row->kind) main = static_cast<MainTransform>(i);
    if (main && locator.mainTransform(*main))
      return fail(mainNode->pos, "the locator has a main " + inQuotes(type->text) + " already");
  }
  Item* item = addTransform(locator, type->text.c_str(), name->text, id, main, node.pos);
  if (!item) return false;

  double values[3];
  if (const JsonNode* v = member(node, "values")) {
    if (!readVector(*v, "\"values\"", values)) return false;
    setVector(*item, *row->values, values, row->factor);
  }
  if (row->kind == TransformKind::Transform) {
    const struct {
      const char* key;
      Channels3& channels;
      double factor;
    } parts[] = {{"position", kPosition, 1.0}, {"rotation", kRotation, kRadiansPerDegree}, {"scale", kScale, 1.0}};
    for (const auto& part : parts) {
      const JsonNode* v = member(node, part.key);
      if (!v) continue;
      if (!readVector(*v, inQuotes(part.key), values)) return false;
      setVector(*item, part.channels, values, part.factor);
    }
  }
  if (const JsonNode* orderNode = member(node, "order")) {
    int order = 0;
    if (!readRotationOrder(*orderNode, "\"order\"", order)) return false;
    item->setValue(static_cast<std::size_t>(scene_.types().findChannel(item->typeCode(), "order")), kSetupAction,
                   order);
  }
  // Raw channel values (angles in radians) and other actions, as on any item.
  return readItemBody(node, *item);
}

bool SceneReader::readVector(const JsonNode& node, const std::string& what, double (&values)[3]) {
  if (node.kind != Kind::Array || node.elements.size() != 3) {
    const std::string got =
        node.kind == Kind::Array ? "an array of " + std::to_string(node.elements.size()) : describe(node);
    return fail(node.pos, what + " takes an array of 3 numbers, not " + got);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    const JsonNode& element = node.elements[i];
    if (!element.isNumber())
      return fail(element.pos, what + " element " + std::to_string(i) + " is " + describe(element) + ", not a number");
    values[i] = element.number;
  }
  return true;
}

bool SceneReader::readRotationOrder(const JsonNode& node, const std::string& what, int& order) {
  if (!expect(node, Kind::String, what)) return false;
  const std::optional<RotationOrder> found = rotationOrderByName(node.text);
  if (!found) return fail(node.pos, "unknown rotation order " + inQuotes(node.text) + "; expected one of " + orderNames());
  order = static_cast<int>(*found);
  return true;
}

Item* SceneReader::addTransform(Item& locator, const char* type, const std::string& name, const JsonNode* id,
                                std::optional<MainTransform> main, TextPos pos) {
  const std::string ident = id ? id->text : freeIdent(locator.ident() + "/" + name);
  Item* item = scene_.addTransform(locator, scene_.types().find(type), name, ident, main);
  if (!item) fail(id ? id->pos : pos, "id " + inQuotes(ident) + " is already taken");
  return item;
}

void SceneReader::setVector(Item& item, const char* const (&channels)[3], const double (&values)[3], double factor) {
  for (int i = 0; i < 3; ++i) {
    const int channel = scene_.types().findChannel(item.typeCode(), channels[i]);
    if (channel >= 0) item.setValue(static_cast<std::size_t>(channel), kSetupAction, values[i] * factor);
  }
}

bool SceneReader::readLinks(const JsonNode& links) {
  if (!expect(links, Kind::Array, "\"links\"")) return false;
  for (const JsonNode& node : links.elements) {
    if (!expect(node, Kind::Object, "a link") || !checkKeys(node, kLinkKeys, "in a link")) return false;
    const JsonNode* from = member(node, "from");
    const JsonNode* to = member(node, "to");
    if (!from || !to) return fail(node.pos, std::string("link has no ") + (from ? "\"to\"" : "\"from\""));
    ChannelLink link{};
    if (!readChannelRef(*from, "\"from\"", link.from, link.fromChannel) ||
        !readChannelRef(*to, "\"to\"", link.to, link.toChannel))
      return false;
    std::string problem;
    if (!scene_.addLink(link, &problem))
      return fail(node.pos, "cannot link " + inQuotes(from->text) + " to " + inQuotes(to->text) + ": " + problem);
  }
  return true;
}

// "ITEM.CHANNEL": channel names hold dots too ("pos.X"), so each dot is tried
// as the separator, and exactly one reading must name an item and one of its channels.
bool SceneReader::readChannelRef(const JsonNode& node, const std::string& what, Item*& item, std::size_t& channel) {
  if (!expect(node, Kind::String, what)) return false;
  const std::string_view text = node.text;
  unsigned readings = 0;
  const Item* firstItem = nullptr;
  std::string firstItemRef, firstChannel;
  for (std::size_t dot = text.find('.'); dot != std::string::npos; dot = text.find('.', dot + 1)) {
    const std::string_view ref = text.substr(0, dot), name = text.substr(dot + 1);
    Item* candidate = findItemByRef(scene_, ref, nullptr);
    if (!candidate) continue;
    if (!firstItem) {
      firstItem = candidate;
      firstItemRef = std::string(ref);
      firstChannel = std::string(name);
    }
    const int index = scene_.types().findChannel(candidate->typeCode(), name);
    if (index < 0) continue;
    item = candidate;
    channel = static_cast<std::size_t>(index);
    ++readings;
  }
  if (readings == 1) return true;
  if (readings > 1)
    return fail(node.pos, inQuotes(text) + " can be read as more than one item and channel; name the item by an id without dots");
  if (text.find('.') == std::string::npos) return fail(node.pos, what + " takes \"ITEM.CHANNEL\", not " + inQuotes(text));
  if (!firstItem) return fail(node.pos, "no item for " + inQuotes(text));
  std::string message = "item " + inQuotes(firstItemRef) + " has no channel " + inQuotes(firstChannel);
  for (const Item* transform : firstItem->transforms()) {
    if (scene_.types().findChannel(transform->typeCode(), firstChannel) < 0) continue;
    message += "; its transform item " + inQuotes(firstItemRef + "/" + transform->name()) + " has";
    break;
  }
  return fail(node.pos, message);
}

bool SceneReader::readItemList(const JsonNode& list) {
  if (!expect(list, Kind::Array, "\"itemList\"")) return false;
  for (const JsonNode& ref : list.elements) {
    if (!expect(ref, Kind::String, "an item list entry")) return false;
    std::string problem;
    Item* item = findItemByRef(scene_, ref.text, &problem);
    if (!item) return fail(ref.pos, "cannot list: " + problem);
    scene_.addToItemList(*item);
  }
  return true;
}

}  // namespace vexo
