#include <algorithm>

#include "host/locator.h"
#include "matrix4.h"
#include "node_walk.h"
#include "transform_analysis.h"

VxResult chooseTransform(NodeWalkContext& context, const CVxUser_Item& item, std::uint32_t node,
                         std::uint32_t parentNode) {
  const CVxLocator locator(context.scene, item);
  if (!locator.test()) {
    context.log.info("   !!! No locator !!!");
    return VXR_NOTFOUND;
  }
  TransformAnalysis analysis;
  analyseTransforms(context.scene, item, context.types, context.log, analysis);
  context.log.info("   driven:%d xformDriven:%d", analysis.drivenChannels, analysis.drivenTransformChannels);

  const CVxChannelRead& read = context.read;
  double world[16];
  matrix4::identity(world);
  locator.worldMatrix(read, world);

  // Under the document root, an item whose parent is not exported keeps its
  // world placement; otherwise the node carries the matrix relative to the parent.
  const bool keepWorld =
      context.options.exportType != 0 && parentNode == context.documentRoot && item.parent().test();
  const char* choice = "World";
  double matrix[16];
  std::copy(world, world + 16, matrix);
  if (!keepWorld) {
    double parentWorld[16];
    double parentInverse[16];
    if (locator.parentWorldMatrix(read, parentWorld) && matrix4::invert(parentWorld, parentInverse)) {
      matrix4::multiply(world, parentInverse, matrix);
      matrix4::snapRoundingNoise(matrix);
      choice = "Local";
    }
  }
  context.document.setNodeMatrix(node, matrix);
  context.log.info("   Using %s matrix", choice);
  return VXR_OK;
}
