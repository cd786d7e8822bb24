// IVxChannelRead: channel values of one scene as they evaluate in one action at one time.
#pragma once

#include <string>
#include <utility>

#include "vexo/vx_scene.h"

namespace vexo {

class Item;
class SdkScene;
struct ChannelDef;

class SdkChannelRead final : public IVxChannelRead {
 public:
  SdkChannelRead(SdkScene& scene, std::string action, double time)
      : scene_(scene), action_(std::move(action)), time_(time) {}

  double Time() const override { return time_; }
  const char* Action() const override { return action_.c_str(); }
  // Float values read as integers round to the nearest one; out of range fails.
  VxResult Integer(IVxItem* item, unsigned channel, std::int32_t* value) override;
  VxResult Double(IVxItem* item, unsigned channel, double* value) override;
  VxResult Text(IVxItem* item, unsigned channel, const char** value) override;
  VxResult Matrix(IVxItem* item, unsigned channel, double matrix[16]) override;
  void Release() override { delete this; }

 private:
  ~SdkChannelRead() = default;
  // The engine item for a read, or the failure to return.
  VxResult resolve(IVxItem* item, unsigned channel, const void* out, const Item** resolved) const;

  SdkScene& scene_;
  std::string action_;
  double time_;
};

}  // namespace vexo
