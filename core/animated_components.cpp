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
                                          const std::vector<std::string>& actions) {
  AnimatedComponents found;
  if (!locator.test()) return found;
  std::vector<CVxKeys> views;
  views.reserve(actions.size());
  for (const std::string& action : actions) views.emplace_back(scene, action.c_str());
  for (const ComponentChannels& component : kComponents) {
    const CVxUser_Item transform = locator.mainTransform(component.transform);
    if (!transform.test()) continue;
    for (const char* name : component.names) {
      const int channel = transform.channelIndex(name);
      for (const CVxKeys& keys : views)
        if (keys.count(transform, channel) > 0) found.*component.flag = true;
    }
  }
  return found;
}
