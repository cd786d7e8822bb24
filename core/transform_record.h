// What the transform analysis learns of one node's item: where the main and
// pivot transforms sit in its transform stack, and which channels are driven.
// The node walk fills one per node; animation sampling reads them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/item.h"

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
  std::array<std::vector<std::string>, kStackSlotCount> idents;
  // Channels ("pos.X" ...) of "transform" items that animation sampling reads.
  std::vector<std::pair<CVxUser_Item, int>> sampledChannels;

  TransformAnalysis() { slots.fill(-1); }
};
