#include "skin_slots.h"

SkinSlots::Add SkinSlots::add(std::uint32_t point, std::uint32_t joint, double weight) {
  if (point >= counts_.size()) return Add::NoSuchPoint;
  std::uint8_t& count = counts_[point];
  if (count >= kSlots) return Add::Dropped;
  joints_[kSlots * point + count] = joint;
  weights_[kSlots * point + count] = weight;
  ++count;
  return Add::Added;
}

void vertexSlots(const SkinSlots& slots, std::uint32_t point, std::uint16_t joints[4], float weights[4]) {
  double kept[SkinSlots::kSlots] = {0.0, 0.0, 0.0, 0.0};
  double sum = 0.0;
  const unsigned used = point < slots.pointCount() ? slots.count(point) : 0;
  for (unsigned slot = 0; slot < SkinSlots::kSlots; ++slot) {
    joints[slot] = 0;
    weights[slot] = 0.0f;
    if (slot >= used) continue;
    const double w = slots.weight(point, slot);
    kept[slot] = w > 0.0 ? w : 0.0;
    sum += kept[slot];
    // One joint twice at a point: its weights add up in its first slot.
    for (unsigned earlier = 0; earlier < slot; ++earlier)
      if (slots.joint(point, earlier) == slots.joint(point, slot)) {
        kept[earlier] += kept[slot];
        kept[slot] = 0.0;
        break;
      }
  }
  if (!(sum > 0.0)) {
    weights[0] = 1.0f;
    return;
  }
  for (unsigned slot = 0; slot < used; ++slot) {
    weights[slot] = static_cast<float>(kept[slot] / sum);
    // A slot that carries no weight names joint 0, as glTF asks of unused slots.
    if (weights[slot] != 0.0f) joints[slot] = static_cast<std::uint16_t>(slots.joint(point, slot));
  }
}

void primitiveSlots(const SkinSlots& slots, const std::vector<std::uint32_t>& vertexPoint,
                    std::vector<std::uint16_t>& joints, std::vector<float>& weights) {
  joints.assign(4 * vertexPoint.size(), 0);
  weights.assign(4 * vertexPoint.size(), 0.0f);
  for (std::size_t v = 0; v < vertexPoint.size(); ++v) vertexSlots(slots, vertexPoint[v], &joints[4 * v], &weights[4 * v]);
}
