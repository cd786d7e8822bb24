#include "node_walk.h"

#include <deque>
#include <utility>

#include "camera_record.h"
#include "core/animated_components.h"
#include "host/locator.h"
#include "transform_choice.h"

namespace {

bool skipsSubtree(const ExportContext& context, const CVxUser_Item& item) {
  const ItemTypes& types = context.types;
  if (item.isA(types.lightMaterial) || item.isA(types.txtrLocator) || item.isA(types.morphDeform) ||
      item.isA(types.light))
    return true;
  return item.isA(types.camera) && context.options.cameras == 0;
}

bool carriesGeometry(const ExportContext& context, const CVxUser_Item& item) {
  const ItemTypes& types = context.types;
  if (context.options.geometry == 0) return false;
  return item.isA(types.mesh) || item.isA(types.meshInst) || item.isA(types.triSurf);
}

std::uint32_t createNode(ExportContext& context, const CVxUser_Item& item, std::uint32_t parentNode) {
  const std::string name = item.name();
  if (name == "MorphGroup" || name == "TextureGroup") return GltfDocument::kNone;

  GltfDocument& document = *context.document;
  std::uint32_t mesh = GltfDocument::kNone;
  if (context.meshes && carriesGeometry(context, item)) mesh = context.meshes->exportMesh(item);
  std::uint32_t camera = GltfDocument::kNone;
  if (item.isA(context.types.camera)) camera = addCameraRecord(context, item);

  const std::uint32_t node = document.addNode(parentNode, name.c_str());
  if (mesh != GltfDocument::kNone) {
    document.setNodeMesh(node, mesh);
    context.deformers.push_back({item, node});
  }
  if (camera != GltfDocument::kNone) document.setNodeCamera(node, camera);
  chooseTransform(context, item, node, parentNode);
  // The timeline animates the items whose position, rotation or scale is keyed in what "edit" plays.
  if (context.options.animation != 0 && context.options.exportActionType == 0) {
    const AnimatedComponents animated = findAnimatedComponents(context.scene, CVxLocator(context.scene, item), "edit");
    if (animated.any()) context.animatedItems.push_back({item, animated});
  }
  return node;
}

}  // namespace

VxResult walkNodes(ExportContext& context) {
  const bool withChildren = context.options.exportType == 0 || context.options.exportType == 2;
  std::deque<std::pair<std::uint32_t, CVxUser_Item>> stack;

  for (const CVxUser_Item& root : context.rootItems) {
    if (!root.isA(context.types.locator)) continue;
    stack.emplace_back(context.documentRoot, root);
    while (!stack.empty()) {
      const auto [parentNode, item] = stack.back();
      stack.pop_back();
      if (!item.test()) {
        context.log.error("Failed to set item");
        return VXR_FAILED;
      }
      if (skipsSubtree(context, item)) continue;

      const std::uint32_t node = createNode(context, item, parentNode);
      if (node == GltfDocument::kNone) continue;
      context.itemNodes.add(item, node);

      // Children go on the stack last to first, so the first child comes off first.
      if (!withChildren) continue;
      for (unsigned i = item.childCount(); i-- > 0;) stack.emplace_back(node, item.child(i));
    }
  }
  return VXR_OK;
}
