// What a locator's transform stack holds: where its main and pivot
// transforms sit, and which of its channels are driven by links.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "host/item.h"
#include "host/scene.h"
#include "item_types.h"
#include "plugin/gltf_log_msg.h"

// Positions in the transform stack; each slot holds a stack index or -1.
enum StackSlot : int {
  kMainPosition,
  kMainRotation,
  kMainScale,
  kRotationOffset,
  kRotationPivot,
  kRotationAfter,
  kRotationBefore,
  kRotationPivotCompensation,
  kScalingOffset,
  kScalingPivot,
  kScalingPivotCompensation,
  kStackSlotCount
};

// The matrix channels whose links make an item "driven".
enum DrivenMatrix : int { kWposMatrix, kWrotMatrix, kWsclMatrix, kWorldMatrix, kLocalMatrix, kParentMatrix, kDrivenCount };

struct TransformAnalysis {
  std::array<std::int32_t, kStackSlotCount> slots;
  std::array<bool, kDrivenCount> driven{};
  std::int32_t drivenChannels = 0;
  std::int32_t drivenTransformChannels = 0;
  // Identities of the classified transform items other than the main ones, per slot.
  std::array<std::vector<std::string>, kStackSlotCount> names;
  // Channels ("pos.X" ...) of "transform" items that animation sampling reads.
  std::vector<std::pair<CVxUser_Item, int>> sampledChannels;

  TransformAnalysis() { slots.fill(-1); }
};

// Analyses the item's stack and logs its driven channels. VXR_NOTFOUND
// (with "   !!! No locator !!!") when the item has no locator view.
VxResult analyseTransforms(const CVxUser_Scene& scene, const CVxUser_Item& item, const ItemTypes& types,
                           GltfLogMsg& log, TransformAnalysis& analysis);
