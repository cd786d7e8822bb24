// The four joint/weight slots of every point of a skinned mesh, and the
// per-vertex JOINTS_0/WEIGHTS_0 values written from them. Plain data: tests
// reach it with plain arrays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class SkinSlots {
 public:
  static constexpr unsigned kSlots = 4;

  enum class Add { Added, Dropped, NoSuchPoint };

  explicit SkinSlots(std::size_t pointCount) : counts_(pointCount, 0), joints_(kSlots * pointCount, 0), weights_(kSlots * pointCount, 0.0) {}

  // The next free slot of the point takes (joint, weight). A point that
  // already uses all four slots drops it: the first four influences win, in
  // the order they are added, whatever their weights.
  Add add(std::uint32_t point, std::uint32_t joint, double weight);

  std::size_t pointCount() const { return counts_.size(); }
  unsigned count(std::uint32_t point) const { return counts_[point]; }
  std::uint32_t joint(std::uint32_t point, unsigned slot) const { return joints_[kSlots * point + slot]; }
  double weight(std::uint32_t point, unsigned slot) const { return weights_[kSlots * point + slot]; }

 private:
  std::vector<std::uint8_t> counts_;
  std::vector<std::uint32_t> joints_;
  std::vector<double> weights_;
};

// The four slots of one vertex as written: the used slots in order with
// their weights scaled to sum to one (a negative weight counts as 0; a joint
// in two slots adds them in its first), and every slot without weight set to
// joint 0 and weight 0. A point without any positive weight is bound wholly
// to joint 0, which holds it at its place in the exported pose.
void vertexSlots(const SkinSlots& slots, std::uint32_t point, std::uint16_t joints[4], float weights[4]);

// JOINTS_0 and WEIGHTS_0 of a primitive, 4 values per vertex, from the mesh
// point of each vertex.
void primitiveSlots(const SkinSlots& slots, const std::vector<std::uint32_t>& vertexPoint,
                    std::vector<std::uint16_t>& joints, std::vector<float>& weights);
