// Which of an item's translation, rotation and scale move in time: the X, Y
// and Z channels of its main position, rotation and scale transforms, tested
// in the key view of the action a read takes them from.
#pragma once

#include "host/locator.h"
#include "host/scene.h"

struct AnimatedComponents {
  bool translation = false;
  bool rotation = false;
  bool scale = false;
  bool any() const { return translation || rotation || scale; }
};

// A component counts as animated when one of its channels has keys in
// `action` (as a read in that action finds them: "edit" sees the active
// action's and "setup"'s keys too). A channel only driven by a link is not: the host cannot say
// whether the link's source moves, and a still rig must stay a still node.
// A missing transform is not animated.
AnimatedComponents findAnimatedComponents(const CVxUser_Scene& scene, const CVxLocator& locator,
                                          const char* action);
