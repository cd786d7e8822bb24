// One animated item's curves in one animation: which of translation,
// rotation and scale it animates, and one key per sample for each of them.
// Plain values only: the phase reads the host and hands matrices in.
#pragma once

#include <cstdint>

#include "gltf/document.h"

class TransformCurves {
 public:
  enum Component { kTranslation, kRotation, kScale, kComponents };

  // The last three values of a component, the newest in slot (count mod 3).
  struct History {
    double slots[3][4] = {};
    std::int32_t count = 0;
    double lastTime = 0.0;
  };

  TransformCurves(std::uint32_t node, bool translation, bool rotation, bool scale);

  std::uint32_t node() const { return node_; }
  // 1 when at least one component is animated; any other value makes the record inert.
  std::int32_t initialised() const { return initialised_; }
  bool animates(Component c) const { return animated_[c]; }
  const History& history(Component c) const { return history_[c]; }

  // Adds a curve to `animation` for each animated component, in the order
  // translation, rotation, scale, all bound to the node; later keys go there.
  void addCurves(GltfDocument& document, std::uint32_t animation);
  // One key per animated component at time t, taken from the node's matrix
  // at t (row-major, row vectors): translation, the trace-method quaternion
  // of the matrix as it stands (not of unit length when scaled), and the
  // lengths of the rows (always positive), as gltfDecompose() gives them.
  void append(GltfDocument& document, double t, const double matrix[16]);

 private:
  std::uint32_t node_;
  std::int32_t initialised_ = 0;
  std::uint32_t animation_ = GltfDocument::kNone;
  bool animated_[kComponents];
  std::uint32_t curves_[kComponents] = {GltfDocument::kNone, GltfDocument::kNone, GltfDocument::kNone};
  History history_[kComponents];
};
