// IVxChannelRead: channel values of one scene as they evaluate in one action at
// one time, links followed and locator matrices computed.
#pragma once

#include <string>

#include "engine/evaluation.h"
#include "vexo/vx_scene.h"

namespace vexo {

class Item;
class SdkScene;
struct ChannelDef;

class SdkChannelRead final : public IVxChannelRead {
 public:
  SdkChannelRead(SdkScene& scene, const std::string& action, double time);

  double Time() const override { return evaluation_.time(); }
  const char* Action() const override { return evaluation_.action().c_str(); }
  // Float values read as integers round to the nearest one; out of range fails.
  VxResult Integer(IVxItem* item, unsigned channel, std::int32_t* value) override;
  VxResult Double(IVxItem* item, unsigned channel, double* value) override;
  VxResult Text(IVxItem* item, unsigned channel, const char** value) override;
  VxResult Matrix(IVxItem* item, unsigned channel, double matrix[16]) override;
  void Release() override { delete this; }

 private:
  ~SdkChannelRead() = default;
  // The value for a read, or the failure to return.
  VxResult resolve(IVxItem* item, unsigned channel, const void* out, const Value** resolved);

  SdkScene& scene_;
  Evaluation evaluation_;
};

}  // namespace vexo
