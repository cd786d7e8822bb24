// IVxLocatorService, IVxLocator and IVxChannelLinks over the engine's
// transform stacks, matrix evaluation, channel links and item list.
#pragma once

#include <memory>
#include <unordered_map>

#include "engine/locator_types.h"
#include "vexo/vx_locator.h"

namespace vexo {

class Item;
class SdkScene;

class SdkLocator final : public IVxLocator {
 public:
  SdkLocator(SdkScene& scene, vexo::Item& item) : scene_(scene), item_(item) {}

  IVxItem* Item() override;
  VxResult WorldMatrix(IVxChannelRead* read, double matrix[16]) override;
  VxResult LocalMatrix(IVxChannelRead* read, double matrix[16]) override;
  VxResult ParentWorldMatrix(IVxChannelRead* read, double matrix[16]) override;

  unsigned TransformCount() override;
  IVxItem* TransformByIndex(unsigned index) override;
  IVxItem* MainTransform(VxMainTransform which) override;

 private:
  // The matrix as `read` evaluates it (its action and time).
  VxResult evaluate(IVxChannelRead* read, MatrixChannel which, double matrix[16]);

  SdkScene& scene_;
  vexo::Item& item_;
};

class SdkChannelLinks final : public IVxChannelLinks {
 public:
  explicit SdkChannelLinks(SdkScene& scene) : scene_(scene) {}

  unsigned IncomingCount(IVxItem* item, unsigned channel) override;
  VxResult IncomingByIndex(IVxItem* item, unsigned channel, unsigned index, IVxItem** from,
                           unsigned* fromChannel) override;

 private:
  SdkScene& scene_;
};

class SdkLocatorService final : public IVxLocatorService {
 public:
  explicit SdkLocatorService(SdkScene& scene) : scene_(scene), links_(scene) {}

  VxResult LocatorLookup(IVxItem* item, IVxLocator** locator) override;
  IVxChannelLinks* ChannelLinks() override { return &links_; }
  unsigned ItemListCount() override;
  IVxItem* ItemListByIndex(unsigned index) override;

 private:
  SdkScene& scene_;
  SdkChannelLinks links_;
  // One view per locator, kept while the scene lives.
  std::unordered_map<const vexo::Item*, std::unique_ptr<SdkLocator>> locators_;
};

}  // namespace vexo
