#include "transform_choice.h"

#include <cfloat>
#include <cmath>

#include "core/flat_transform.h"
#include "core/matrix4.h"
#include "host/locator.h"
#include "transform_analysis.h"

namespace {

bool fitsSinglePrecision(const double m[16]) {
  for (int i = 0; i < 16; ++i)
    if (std::fabs(m[i]) > FLT_MAX) return false;
  return true;
}

}  // namespace

void chooseTransform(ExportContext& context, const CVxUser_Item& item, std::uint32_t node, std::uint32_t parentNode) {
  const CVxLocator locator(context.scene, item);
  if (!locator.test()) {
    context.log.info("   !!! No locator !!!");
    return;
  }
  NodeTransform& transform = context.nodeTransforms[node];
  analyseTransforms(context, locator, item, transform.analysis);
  context.log.info("   driven:%d xformDriven:%d", transform.analysis.drivenChannels,
                   transform.analysis.drivenTransformChannels);

  double world[16];
  matrix4::identity(world);
  locator.worldMatrix(context.edit, world);
  double parentWorld[16];
  const bool parentKnown = locator.parentWorldMatrix(context.edit, parentWorld);
  double ownLocal[16];
  const bool localKnown = locator.localMatrix(context.edit, ownLocal);

  // Under the document root, an item whose parent is not exported keeps its
  // world placement; otherwise the node carries the matrix relative to the parent.
  const bool keepWorld =
      context.options.exportType != 0 && parentNode == context.documentRoot && item.parent().test();
  transform.rule = keepWorld ? Placement::World : Placement::Local;

  NodeMatrix chosen = chooseNodeMatrix(world, parentKnown ? parentWorld : nullptr, transform.rule,
                                      localKnown ? ownLocal : nullptr);
  if (!chosen.finite) {
    // NaN or infinity has no place in glTF: the node stays where its parent is.
    context.log.error("Matrix of item:%s is not finite; its node keeps the identity", item.name().c_str());
    matrix4::identity(chosen.matrix);
  } else if (!fitsSinglePrecision(chosen.matrix)) {
    context.log.warning("Matrix of item:%s goes beyond single precision; written with the largest float",
                        item.name().c_str());
  }
  context.document->setNodeMatrix(node, chosen.matrix);
  // A scale of 0 cannot be a glTF "matrix"; as translation, rotation and scale it can.
  if (flattensSpace(chosen.matrix)) context.document->setNodeTrs(node, decomposeFlat(chosen.matrix));
  context.log.info("   Using %s matrix", chosen.placement == Placement::World ? "World" : "Local");
}
