// Wrapper over the keys of channels in one action.
#pragma once

#include <string>
#include <vector>

#include "item.h"
#include "scene.h"
#include "vexo/vx_anim.h"

class CVxKeys {
 public:
  // Keys as the action ("setup", "edit" or an action clip's name) holds them.
  CVxKeys(const CVxUser_Scene& scene, const char* action);

  bool test() const { return service_ != nullptr; }
  // Keyed in the action, or driven by a link.
  bool isAnimated(const CVxUser_Item& item, int channel) const;
  unsigned count(const CVxUser_Item& item, int channel) const;
  // False, leaving `time` as it was, when there is no such key.
  bool time(const CVxUser_Item& item, int channel, unsigned index, double& time) const;
  // Every key time of the channel, in increasing order.
  std::vector<double> times(const CVxUser_Item& item, int channel) const;

 private:
  IVxAnimService* service_ = nullptr;
  std::string action_;
};
