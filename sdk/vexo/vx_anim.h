// Vexo SDK: keys, actors, actions and IK chains.
//
// An action is an "actionclip" item; channel readers take its name as their
// action. Key queries name the action the same way ("setup", "edit" or a
// clip's name) and answer for the keys a channel read in that action takes:
// the action's own, else (for "edit") the active clip's, else "setup"'s.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

// The actor view of an "actor" item.
class IVxActor {
 public:
  virtual IVxItem* Item() = 0;

  // The items the actor animates, in the order the actor lists them.
  virtual unsigned ItemCount() = 0;
  virtual IVxItem* ItemByIndex(unsigned index) = 0;

  // The channels keyed in any of the actor's actions, on its items and their
  // transform items: item order, then channel order.
  virtual unsigned ChannelCount() = 0;
  virtual VxResult ChannelByIndex(unsigned index, IVxItem** item, unsigned* channel) = 0;

  // The actor's "actionclip" items, in scene order.
  virtual unsigned ActionCount() = 0;
  virtual IVxItem* ActionByIndex(unsigned index) = 0;
  // VXR_OK when the action is active, VXR_FALSE when not, VXR_BADARG when it is not the actor's.
  virtual VxResult ActionIsActive(IVxItem* action) = 0;
  // Making an action active makes the actor's other actions inactive: at most one is active.
  virtual VxResult SetActionActive(IVxItem* action, bool active) = 0;

 protected:
  ~IVxActor() = default;
};

class IVxAnimService {
 public:
  // VXR_NOTFOUND when the item is not an actor. The view lives as long as the item.
  virtual VxResult ActorLookup(IVxItem* item, IVxActor** actor) = 0;
  // The scene item's "currentGroups" list: the actors the user works with now.
  virtual unsigned CurrentGroupCount() = 0;
  virtual IVxItem* CurrentGroupByIndex(unsigned index) = 0;

  // VXR_OK when the channel has keys in the action or a link drives it, VXR_FALSE when not.
  virtual VxResult IsAnimated(const char* action, IVxItem* item, unsigned channel) = 0;
  // The channel's keys in the action, in increasing time; 0 when it has none.
  virtual unsigned KeyCount(const char* action, IVxItem* item, unsigned channel) = 0;
  virtual VxResult KeyTime(const char* action, IVxItem* item, unsigned channel, unsigned index, double* time) = 0;

  // The joints of an "ikFullBody" item's chain, root first; 0 for any other item.
  virtual unsigned IKJointCount(IVxItem* solver) = 0;
  virtual IVxItem* IKJointByIndex(IVxItem* solver, unsigned index) = 0;

 protected:
  ~IVxAnimService() = default;
};
