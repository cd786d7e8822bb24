// Actors, their actions, the "currentGroups" list and IK chains.
//
// An actor ("actor" item) lists the items it animates; its actions are the
// "actionclip" items among its children. An action is active when its setup
// value of "active" is not 0; an actor has at most one active action.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vexo {

class Item;
class Scene;

class ActorStore {
 public:
  void setMembers(const Item& actor, std::vector<Item*> items) { members_[&actor] = std::move(items); }
  // The items an actor animates, in its order; empty for any other item.
  const std::vector<Item*>& members(const Item& actor) const;

  void setJoints(const Item& solver, std::vector<Item*> joints) { joints_[&solver] = std::move(joints); }
  // An "ikFullBody" item's joints, root first.
  const std::vector<Item*>& joints(const Item& solver) const;

  // Until set, the list holds every actor of the scene in scene order.
  void setCurrentGroups(std::vector<Item*> actors) {
    currentGroups_ = std::move(actors);
    currentGroupsSet_ = true;
  }
  bool currentGroupsSet() const { return currentGroupsSet_; }
  const std::vector<Item*>& currentGroups() const { return currentGroups_; }

 private:
  std::unordered_map<const Item*, std::vector<Item*>> members_;
  std::unordered_map<const Item*, std::vector<Item*>> joints_;
  std::vector<Item*> currentGroups_;
  bool currentGroupsSet_ = false;
};

// The "currentGroups" list as the scene holds it now.
std::vector<Item*> currentGroups(const Scene& scene);
// The actor's "actionclip" children, in order.
std::vector<Item*> actorActions(const Scene& scene, const Item& actor);
// The actor an action belongs to, or null.
Item* actionActor(const Scene& scene, const Item& action);
bool isActionActive(const Scene& scene, const Item& action);
// Activating an action deactivates the other actions of its actor. False for an item that is no "actionclip".
bool setActionActive(const Scene& scene, Item& action, bool active);
// The names of the active actions, in scene order.
std::vector<std::string> activeActionNames(const Scene& scene);
// The channels keyed in any of the actor's actions, on its items and their
// transform items: item order, each item before its transforms, then channel order.
std::vector<std::pair<Item*, std::size_t>> actorChannels(const Scene& scene, const Item& actor);

}  // namespace vexo
