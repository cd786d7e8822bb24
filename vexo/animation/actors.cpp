#include "animation/actors.h"

#include <cstdint>
#include <variant>

#include "engine/scene.h"

namespace vexo {
namespace {

const std::vector<Item*> kNone;

int activeChannel(const Scene& scene, const Item& action) {
  return scene.types().findChannel(action.typeCode(), "active");
}

bool isA(const Scene& scene, const Item& item, const char* type) {
  return scene.types().derives(item.typeCode(), scene.types().find(type));
}

}  // namespace

const std::vector<Item*>& ActorStore::members(const Item& actor) const {
  auto it = members_.find(&actor);
  return it == members_.end() ? kNone : it->second;
}

const std::vector<Item*>& ActorStore::joints(const Item& solver) const {
  auto it = joints_.find(&solver);
  return it == joints_.end() ? kNone : it->second;
}

std::vector<Item*> currentGroups(const Scene& scene) {
  if (scene.actors().currentGroupsSet()) return scene.actors().currentGroups();
  return scene.itemsOfType(scene.types().find("actor"));
}

std::vector<Item*> actorActions(const Scene& scene, const Item& actor) {
  std::vector<Item*> actions;
  if (!isA(scene, actor, "actor")) return actions;
  for (Item* child : actor.children())
    if (isA(scene, *child, "actionclip")) actions.push_back(child);
  return actions;
}

Item* actionActor(const Scene& scene, const Item& action) {
  Item* parent = action.parent();
  return parent && isA(scene, *parent, "actor") ? parent : nullptr;
}

bool isActionActive(const Scene& scene, const Item& action) {
  const int channel = activeChannel(scene, action);
  if (channel < 0 || !isA(scene, action, "actionclip")) return false;
  const Value& v = action.value(static_cast<std::size_t>(channel), kSetupAction);
  const auto* i = std::get_if<std::int32_t>(&v);
  return i && *i != 0;
}

bool setActionActive(const Scene& scene, Item& action, bool active) {
  const int channel = activeChannel(scene, action);
  if (channel < 0 || !isA(scene, action, "actionclip")) return false;
  if (active) {
    if (const Item* actor = actionActor(scene, action))
      for (Item* other : actorActions(scene, *actor))
        if (other != &action && isActionActive(scene, *other))
          other->setValue(static_cast<std::size_t>(channel), kSetupAction, std::int32_t{0});
  }
  return action.setValue(static_cast<std::size_t>(channel), kSetupAction, std::int32_t{active ? 1 : 0});
}

std::vector<std::string> activeActionNames(const Scene& scene) {
  std::vector<std::string> names;
  for (const Item* action : scene.itemsOfType(scene.types().find("actionclip")))
    if (isActionActive(scene, *action)) names.push_back(action->name());
  return names;
}

std::vector<std::pair<Item*, std::size_t>> actorChannels(const Scene& scene, const Item& actor) {
  std::vector<std::pair<Item*, std::size_t>> channels;
  std::vector<std::string> actions;
  for (const Item* action : actorActions(scene, actor)) actions.push_back(action->name());
  auto addKeyed = [&](Item* item) {
    for (std::size_t c = 0; c < item->channelCount(); ++c) {
      bool keyed = false;
      for (const std::string& name : actions) keyed = keyed || item->actionKeys(c, name);
      if (keyed) channels.emplace_back(item, c);
    }
  };
  for (Item* item : scene.actors().members(actor)) {
    addKeyed(item);
    for (Item* transform : item->transforms()) addKeyed(transform);
  }
  return channels;
}

}  // namespace vexo
