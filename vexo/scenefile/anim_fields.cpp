// Keys, actors' items, IK chains and the "currentGroups" list in scene files.
#include <cmath>
#include <cstdint>
#include <limits>

#include "animation/actors.h"
#include "scenefile/scene_reader.h"

namespace vexo {
namespace {

using Kind = JsonNode::Kind;

bool isA(const Scene& scene, const Item& item, const char* type) {
  return scene.types().derives(item.typeCode(), scene.types().find(type));
}

}  // namespace

// "keys": { ACTION: { CHANNEL: [[time, value], [time, value, "stepped"], ...] } }.
bool SceneReader::readKeys(const JsonNode& keys, Item& item) {
  if (!expect(keys, Kind::Object, "\"keys\"")) return false;
  std::set<std::string_view> seenActions;
  for (const JsonMember& action : keys.members) {
    if (!seenActions.insert(action.key).second) return fail(action.keyPos, "duplicate key " + inQuotes(action.key));
    if (action.key != kSetupAction && action.key != kEditAction) actionUses_.push_back({action.key, action.keyPos});
    if (!expect(action.value, Kind::Object, "the keys of an action")) return false;
    std::set<std::string_view> seen;
    for (const JsonMember& m : action.value.members) {
      if (!seen.insert(m.key).second) return fail(m.keyPos, "duplicate key " + inQuotes(m.key));
      Item* owner = nullptr;
      std::size_t channel = 0;
      if (!keyedChannel(item, m.key, m.keyPos, owner, channel)) return false;
      KeyCurve curve;
      if (!readCurve(m.value, *owner, channel, curve)) return false;
      owner->setKeys(channel, action.key, std::move(curve));
    }
  }
  return true;
}

// The item's own channel by its whole name, else "TRANSFORM.CHANNEL" for a transform item of its stack.
bool SceneReader::keyedChannel(Item& item, const std::string& name, TextPos pos, Item*& owner, std::size_t& channel) {
  int index = scene_.types().findChannel(item.typeCode(), name);
  owner = &item;
  if (index < 0) {
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos) {
      const std::string_view part = std::string_view(name).substr(0, dot);
      for (Item* transform : item.transforms()) {
        if (transform->name() != part) continue;
        owner = transform;
        index = scene_.types().findChannel(transform->typeCode(), name.substr(dot + 1));
        if (index < 0)
          return fail(pos, "transform item " + inQuotes(transform->ident()) + " of type " +
                               inQuotes(transform->type().name) + " has no channel " + inQuotes(name.substr(dot + 1)));
        break;
      }
    }
  }
  if (index < 0)
    return fail(pos, "unknown channel " + inQuotes(name) + " for item type " + inQuotes(item.type().name) +
                         (item.transforms().empty() ? "" : ", nor a \"TRANSFORM.CHANNEL\" of its transform stack"));
  channel = static_cast<std::size_t>(index);
  const ValueType type = owner->channel(channel).type;
  if (type != ValueType::Integer && type != ValueType::Float)
    return fail(pos, "channel " + inQuotes(name) + " holds " + valueTypeName(type) + " values, which cannot be keyed");
  return true;
}

bool SceneReader::readCurve(const JsonNode& node, const Item& owner, std::size_t channel, KeyCurve& curve) {
  const ChannelDef& def = owner.channel(channel);
  const std::string what = "the keys of " + inQuotes(def.name);
  if (!expect(node, Kind::Array, what)) return false;
  std::vector<Key> keys;
  for (const JsonNode& k : node.elements) {
    if (k.kind != Kind::Array || k.elements.size() < 2 || k.elements.size() > 3)
      return fail(k.pos, "a key is [time, value] or [time, value, \"stepped\"], not " +
                             (k.kind == Kind::Array ? "an array of " + std::to_string(k.elements.size()) : describe(k)));
    const JsonNode& time = k.elements[0];
    const JsonNode& value = k.elements[1];
    if (!time.isNumber()) return fail(time.pos, "a key time is a number of seconds, not " + describe(time));
    Key key{time.number, 0.0, Interpolation::Linear};
    if (def.type == ValueType::Integer) {
      if (value.kind != Kind::Integer || value.integer < std::numeric_limits<std::int32_t>::min() ||
          value.integer > std::numeric_limits<std::int32_t>::max())
        return fail(value.pos, "channel " + inQuotes(def.name) + " takes a 32-bit integer, not " + describe(value));
      key.value = static_cast<double>(value.integer);
    } else {
      if (!value.isNumber()) return fail(value.pos, "channel " + inQuotes(def.name) + " takes a number, not " + describe(value));
      key.value = value.number;
    }
    if (k.elements.size() == 3) {
      const JsonNode& interp = k.elements[2];
      if (interp.kind != Kind::String || (interp.text != "linear" && interp.text != "stepped"))
        return fail(interp.pos, "a key's interpolation is \"linear\" or \"stepped\", not " +
                                    (interp.kind == Kind::String ? inQuotes(interp.text) : describe(interp)));
      if (interp.text == "stepped") key.interpolation = Interpolation::Stepped;
    }
    if (!keys.empty() && !(key.time > keys.back().time))
      return fail(time.pos, key.time == keys.back().time
                                ? "key time " + describe(time) + " is given twice"
                                : "key time " + describe(time) + " comes after a later one; write keys in time order");
    keys.push_back(key);
  }
  std::string problem;
  if (!curve.assign(std::move(keys), &problem)) return fail(node.pos, what + ": " + problem);
  return true;
}

// "members" of an actor and "joints" of an IK solver name items anywhere in the file: read once all exist.
bool SceneReader::noteAnimRefs(const JsonNode& node, Item& item) {
  if (isA(scene_, item, "actor")) actorPos_[&item] = node.pos;
  for (const char* key : {"members", "joints"}) {
    const JsonNode* refs = member(node, key);
    if (!refs) continue;
    const bool members = key == std::string_view("members");
    const char* type = members ? "actor" : "ikFullBody";
    if (!isA(scene_, item, type))
      return fail(refs->pos, inQuotes(key) + " is for items of type " + inQuotes(type) + ", not " +
                                 inQuotes(item.type().name));
    if (!expect(*refs, Kind::Array, inQuotes(key))) return false;
    animRefs_.push_back({&item, refs, members});
  }
  return true;
}

bool SceneReader::resolveAnimRefs() {
  for (const AnimRefs& refs : animRefs_) {
    std::vector<Item*> items;
    for (const JsonNode& ref : refs.list->elements) {
      Item* found = readItemRef(ref, refs.members ? "an actor's member" : "an IK joint");
      if (!found) return false;
      for (Item* earlier : items)
        if (earlier == found) return fail(ref.pos, inQuotes(found->ident()) + " is listed twice");
      if (!refs.members && !scene_.locatorTypes().isLocator(found->typeCode()))
        return fail(ref.pos, "IK joint " + inQuotes(found->ident()) + " is no locator");
      items.push_back(found);
    }
    if (refs.members)
      scene_.actors().setMembers(*refs.item, std::move(items));
    else
      scene_.actors().setJoints(*refs.item, std::move(items));
  }
  return true;
}

bool SceneReader::readCurrentGroups(const JsonNode& list) {
  if (!expect(list, Kind::Array, "\"currentGroups\"")) return false;
  std::vector<Item*> actors;
  for (const JsonNode& ref : list.elements) {
    Item* found = readItemRef(ref, "a current group");
    if (!found) return false;
    if (!isA(scene_, *found, "actor"))
      return fail(ref.pos, inQuotes(found->ident()) + " is a " + inQuotes(found->type().name) +
                               "; \"currentGroups\" lists \"actor\" items");
    actors.push_back(found);
  }
  scene_.actors().setCurrentGroups(std::move(actors));
  return true;
}

// An actor plays one action at a time.
bool SceneReader::checkActiveActions() {
  for (const Item* actor : scene_.itemsOfType(scene_.types().find("actor"))) {
    const Item* active = nullptr;
    for (const Item* action : actorActions(scene_, *actor)) {
      if (!isActionActive(scene_, *action)) continue;
      if (active) {
        auto pos = actorPos_.find(actor);
        return fail(pos == actorPos_.end() ? TextPos{} : pos->second,
                    "actor " + inQuotes(actor->ident()) + " has two active actions, " + inQuotes(active->name()) +
                        " and " + inQuotes(action->name()) + "; at most one may be active");
      }
      active = action;
    }
  }
  return true;
}

}  // namespace vexo
