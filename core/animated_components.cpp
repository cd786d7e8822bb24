#include "animated_components.h"

#include "host/keys.h"

namespace {

struct ComponentChannels {
  VxMainTransform transform;
  const char* names[3];
  bool AnimatedComponents::*flag;
};

const ComponentChannels kComponents[] = {
    {VX_XFRM_POSITION, {"pos.X", "pos.Y", "pos.Z"}, &AnimatedComponents::translation},
    {VX_XFRM_ROTATION, {"rot.X", "rot.Y", "rot.Z"}, &AnimatedComponents::rotation},
    {VX_XFRM_SCALE, {"scl.X", "scl.Y", "scl.Z"}, &AnimatedComponents::scale},
};

}  // namespace

AnimatedComponents findAnimatedComponents(const CVxUser_Scene& scene, const CVxLocator& locator,
                                          const char* action) {
  AnimatedComponents found;
  if (!locator.test()) return found;
  const CVxKeys keys(scene, action);
  for (const ComponentChannels& component : kComponents) {
    const CVxUser_Item transform = locator.mainTransform(component.transform);
    if (!transform.test()) continue;
    for (const char* name : component.names)
      if (keys.count(transform, transform.channelIndex(name)) > 0) found.*component.flag = true;
  }
  return found;
}
