// The four joint/weight slots per point and the values written per vertex.
#include <gtest/gtest.h>

#include <vector>

#include "export/geometry/skin_slots.h"

namespace {

TEST(SkinSlots, FirstFourInfluencesWinInOrderWhateverTheirWeights) {
  SkinSlots slots(2);
  const double weights[5] = {0.1, 0.2, 0.3, 0.15, 0.9};
  for (std::uint32_t joint = 0; joint < 5; ++joint) {
    const SkinSlots::Add added = slots.add(1, joint, weights[joint]);
    EXPECT_EQ(added, joint < 4 ? SkinSlots::Add::Added : SkinSlots::Add::Dropped) << joint;
  }
  EXPECT_EQ(slots.add(2, 0, 1.0), SkinSlots::Add::NoSuchPoint);
  EXPECT_EQ(slots.count(0), 0u);
  ASSERT_EQ(slots.count(1), 4u);
  for (unsigned slot = 0; slot < 4; ++slot) {
    EXPECT_EQ(slots.joint(1, slot), slot);
    EXPECT_EQ(slots.weight(1, slot), weights[slot]);
  }

  std::uint16_t joints[4];
  float written[4];
  vertexSlots(slots, 1, joints, written);
  const double sum = 0.1 + 0.2 + 0.3 + 0.15;
  for (unsigned slot = 0; slot < 4; ++slot) {
    EXPECT_EQ(joints[slot], slot);
    EXPECT_FLOAT_EQ(written[slot], static_cast<float>(weights[slot] / sum));
  }
}

TEST(SkinSlots, WrittenSlotsArePaddedNormalisedAndNeverEmpty) {
  SkinSlots slots(4);
  slots.add(0, 3, 0.25);  // one influence below 1
  slots.add(1, 2, 0.5);
  slots.add(1, 5, -0.5);  // a negative weight counts as none
  slots.add(1, 1, 1.5);
  slots.add(2, 4, 0.0);   // only a zero weight: as if not influenced
  // point 3: no influence
  SkinSlots twice(1);
  twice.add(0, 7, 0.25);
  twice.add(0, 2, 0.5);
  twice.add(0, 7, 0.25);

  std::vector<std::uint16_t> joints;
  std::vector<float> weights;
  primitiveSlots(slots, {0, 1, 2, 3, 1}, joints, weights);
  const std::vector<std::uint16_t> expectedJoints = {3, 0, 0, 0, 2, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0};
  const std::vector<float> expectedWeights = {1, 0, 0, 0, 0.25f, 0, 0.75f, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0.25f, 0, 0.75f, 0};
  EXPECT_EQ(joints, expectedJoints);
  EXPECT_EQ(weights, expectedWeights);

  primitiveSlots(twice, {0}, joints, weights);
  EXPECT_EQ(joints, (std::vector<std::uint16_t>{7, 2, 0, 0}));
  EXPECT_EQ(weights, (std::vector<float>{0.5f, 0.5f, 0, 0}));
}

}  // namespace
