#include "keys.h"

CVxKeys::CVxKeys(const CVxUser_Scene& scene, const char* action)
    : service_(scene.test() ? scene.raw()->AnimService() : nullptr), action_(action ? action : "") {}

bool CVxKeys::isAnimated(const CVxUser_Item& item, int channel) const {
  return service_ && item.test() && channel >= 0 &&
         service_->IsAnimated(action_.c_str(), item.raw(), static_cast<unsigned>(channel)) == VXR_OK;
}

unsigned CVxKeys::count(const CVxUser_Item& item, int channel) const {
  if (!service_ || !item.test() || channel < 0) return 0;
  return service_->KeyCount(action_.c_str(), item.raw(), static_cast<unsigned>(channel));
}

bool CVxKeys::time(const CVxUser_Item& item, int channel, unsigned index, double& time) const {
  double t = 0.0;
  if (!service_ || !item.test() || channel < 0 ||
      VxFailed(service_->KeyTime(action_.c_str(), item.raw(), static_cast<unsigned>(channel), index, &t)))
    return false;
  time = t;
  return true;
}

std::vector<double> CVxKeys::times(const CVxUser_Item& item, int channel) const {
  std::vector<double> result;
  const unsigned n = count(item, channel);
  result.reserve(n);
  for (unsigned i = 0; i < n; ++i) {
    double t = 0.0;
    if (time(item, channel, i, t)) result.push_back(t);
  }
  return result;
}
