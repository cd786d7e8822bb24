// IVxScene and IVxItem over the engine's Scene and Items.
//
// Each engine item gets one IVxItem the first time the module sees it, and
// keeps it while the scene lives, so item pointers compare equal across calls.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "engine/evaluation.h"
#include "engine/scene.h"
#include "sdk_impl/sdk_anim.h"
#include "sdk_impl/sdk_command.h"
#include "sdk_impl/sdk_deform.h"
#include "sdk_impl/sdk_scene_meshes.h"
#include "sdk_impl/sdk_shading.h"
#include "vexo/vx_scene.h"

namespace vexo {

class SdkScene;

class SdkItem final : public IVxItem {
 public:
  SdkItem(SdkScene& scene, Item& item) : scene_(scene), item_(item) {}

  Item& item() const { return item_; }
  SdkScene& owner() const { return scene_; }

  VxTypeCode Type() const override { return item_.typeCode(); }
  const char* Name() const override { return item_.name().c_str(); }
  const char* Ident() const override { return item_.ident().c_str(); }
  IVxScene* Scene() override;

  IVxItem* Parent() override;
  unsigned ChildCount() override { return static_cast<unsigned>(item_.children().size()); }
  IVxItem* ChildByIndex(unsigned index) override;

  unsigned ChannelCount() override { return static_cast<unsigned>(item_.channelCount()); }
  VxResult ChannelLookup(const char* name, unsigned* index) override;
  VxResult ChannelName(unsigned index, const char** name) override;
  VxResult ChannelType(unsigned index, VxChannelType* type) override;

 private:
  SdkScene& scene_;
  Item& item_;
};

class SdkLocatorService;

class SdkScene final : public IVxScene {
 public:
  explicit SdkScene(vexo::Scene& scene);
  ~SdkScene();
  SdkScene(const SdkScene&) = delete;
  SdkScene& operator=(const SdkScene&) = delete;

  vexo::Scene& scene() const { return scene_; }
  // The IVxItem of an engine item; null for null.
  IVxItem* wrap(Item* item);
  // The engine item behind an IVxItem of this scene; null for anything else.
  Item* unwrap(IVxItem* item) const;

  unsigned ItemCount(VxTypeCode type) override;
  IVxItem* ItemByIndex(VxTypeCode type, unsigned index) override;
  IVxItem* ItemByIdent(const char* ident) override;
  IVxItem* SceneItem() override { return wrap(&scene_.sceneItem()); }

  unsigned SelectionCount(const char* selectionType) override;
  IVxItem* SelectionByIndex(const char* selectionType, unsigned index) override;

  VxResult ChannelRead(const char* action, double time, IVxChannelRead** read) override;
  double Time() const override { return scene_.time(); }
  VxResult SetTime(double time) override;

  IVxLocatorService* LocatorService() override;
  // The evaluation locator reads use, kept from one read to the next of the
  // same action and time, so that matrices computed once serve them all.
  Evaluation& evaluation(const char* action, double time);
  IVxMeshService* MeshService() override { return &meshService_; }
  IVxShaderService* ShaderService() override { return &shaderService_; }
  IVxDeformService* DeformService() override { return &deformService_; }
  IVxAnimService* AnimService() override { return &animService_; }
  IVxCommandService* CommandService() override { return &commandService_; }

 private:
  // Items of one type in scene order, kept until the scene changes.
  struct TypeView {
    bool filled = false;
    std::uint64_t revision = 0;
    std::vector<Item*> items;
  };
  const std::vector<Item*>& itemsOfType(VxTypeCode type);

  vexo::Scene& scene_;
  std::unordered_map<const Item*, std::unique_ptr<SdkItem>> wrappers_;
  std::unordered_map<VxTypeCode, TypeView> typeViews_;
  std::unique_ptr<SdkLocatorService> locatorService_;
  std::unique_ptr<Evaluation> evaluation_;
  SdkSceneMeshes meshService_{*this};
  SdkShaderService shaderService_{*this};
  SdkDeformService deformService_{*this};
  SdkAnimService animService_{*this};
  SdkCommandService commandService_{*this};
};

// Maps an engine value type to its SDK code.
VxChannelType sdkChannelType(ValueType type);

}  // namespace vexo
