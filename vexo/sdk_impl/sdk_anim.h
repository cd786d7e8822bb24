// IVxAnimService and IVxActor over the engine's keys, actors and IK chains.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/evaluation.h"
#include "vexo/vx_anim.h"

namespace vexo {

class Item;
class SdkScene;

class SdkActor final : public IVxActor {
 public:
  SdkActor(SdkScene& scene, vexo::Item& actor) : scene_(scene), actor_(actor) {}

  IVxItem* Item() override;
  unsigned ItemCount() override;
  IVxItem* ItemByIndex(unsigned index) override;
  unsigned ChannelCount() override { return static_cast<unsigned>(channels().size()); }
  VxResult ChannelByIndex(unsigned index, IVxItem** item, unsigned* channel) override;
  unsigned ActionCount() override { return static_cast<unsigned>(actions().size()); }
  IVxItem* ActionByIndex(unsigned index) override;
  VxResult ActionIsActive(IVxItem* action) override;
  VxResult SetActionActive(IVxItem* action, bool active) override;

 private:
  // Kept until the scene's values or items change.
  const std::vector<std::pair<vexo::Item*, std::size_t>>& channels();
  const std::vector<vexo::Item*>& actions();
  vexo::Item* ownAction(IVxItem* action);

  SdkScene& scene_;
  vexo::Item& actor_;
  std::uint64_t channelsRevision_ = ~std::uint64_t{0};
  std::vector<std::pair<vexo::Item*, std::size_t>> channels_;
  std::uint64_t actionsRevision_ = ~std::uint64_t{0};
  std::vector<vexo::Item*> actions_;
};

class SdkAnimService final : public IVxAnimService {
 public:
  explicit SdkAnimService(SdkScene& scene) : scene_(scene) {}

  VxResult ActorLookup(IVxItem* item, IVxActor** actor) override;
  unsigned CurrentGroupCount() override;
  IVxItem* CurrentGroupByIndex(unsigned index) override;
  VxResult IsAnimated(const char* action, IVxItem* item, unsigned channel) override;
  unsigned KeyCount(const char* action, IVxItem* item, unsigned channel) override;
  VxResult KeyTime(const char* action, IVxItem* item, unsigned channel, unsigned index, double* time) override;
  unsigned IKJointCount(IVxItem* solver) override;
  IVxItem* IKJointByIndex(IVxItem* solver, unsigned index) override;

 private:
  // The keys a read of the channel in the action evaluates, or null.
  const KeyCurve* keys(const char* action, IVxItem* item, unsigned channel);

  SdkScene& scene_;
  std::unordered_map<const vexo::Item*, std::unique_ptr<SdkActor>> actors_;
  std::unique_ptr<Evaluation> evaluation_;  // for key queries: the action they were last made in
};

}  // namespace vexo
