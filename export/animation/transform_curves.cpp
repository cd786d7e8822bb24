#include "transform_curves.h"

#include <algorithm>

TransformCurves::TransformCurves(std::uint32_t node, bool translation, bool rotation, bool scale)
    : node_(node), initialised_(translation || rotation || scale ? 1 : 0), animated_{translation, rotation, scale} {}

void TransformCurves::addCurves(GltfDocument& document, std::uint32_t animation) {
  static const GltfCurveKind kKinds[kComponents] = {GltfCurveKind::Translation, GltfCurveKind::Rotation,
                                                    GltfCurveKind::Scale};
  if (initialised_ != 1) return;
  animation_ = animation;
  for (int c = 0; c < kComponents; ++c)
    if (animated_[c]) curves_[c] = document.addCurve(animation, node_, kKinds[c]);
}

void TransformCurves::append(GltfDocument& document, double t, const double matrix[16]) {
  if (initialised_ != 1) return;
  const GltfTrs parts = gltfDecompose(matrix);
  const double values[kComponents][4] = {{parts.translation[0], parts.translation[1], parts.translation[2], 0.0},
                                         {parts.rotation[0], parts.rotation[1], parts.rotation[2], parts.rotation[3]},
                                         {parts.scale[0], parts.scale[1], parts.scale[2], 0.0}};
  for (int c = 0; c < kComponents; ++c) {
    if (!animated_[c] || curves_[c] == GltfDocument::kNone) continue;
    document.addKey(animation_, curves_[c], t, values[c]);
    History& h = history_[c];
    ++h.count;
    std::copy(values[c], values[c] + 4, h.slots[h.count % 3]);
    h.lastTime = t;
  }
}
