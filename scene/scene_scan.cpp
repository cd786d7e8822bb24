#include "scene_scan.h"

#include "host/locator.h"

namespace {

// Reports what one item brings to the export that the walk cannot see.
void scanItem(ExportContext& context, const CVxUser_Item& item) {
  if (item.isA(context.types.replicator)) context.log.info("Replicator:%s", item.name().c_str());
  if (item.isA(context.types.locator) && !CVxLocator(context.scene, item).test())
    context.log.error("Failed to obtain locator for item:%s", item.name().c_str());
}

}  // namespace

void scanScene(ExportContext& context) {
  const CVxUser_Scene& scene = context.scene;
  const CVxUser_Item sceneItem = scene.sceneItem();
  std::vector<CVxUser_Item>& roots = context.rootItems;
  roots.clear();

  switch (context.options.exportType) {
    case 0: {
      const unsigned count = scene.itemCount(VX_TYPE_ANY);
      for (unsigned i = 0; i < count; ++i) {
        const CVxUser_Item item = scene.item(VX_TYPE_ANY, i);
        scanItem(context, item);
        if (!item.parent().test() && item.isA(context.types.locator)) {
          roots.push_back(item);
          context.log.info("Root item:%s\n", item.name().c_str());
        }
      }
      break;
    }
    case 1: {
      const unsigned count = scene.selectionCount("item");
      for (unsigned i = 0; i < count; ++i) {
        const CVxUser_Item item = scene.selected("item", i);
        if (!item.test() || item == sceneItem) continue;
        scanItem(context, item);
        context.log.info("%s", item.name().c_str());
        roots.push_back(item);
      }
      break;
    }
    case 2: {
      const CVxItemList list(scene);
      for (unsigned i = 0; i < list.count(); ++i) {
        const CVxUser_Item item = list.item(i);
        if (!item.test() || item == sceneItem) continue;
        scanItem(context, item);
        if (!item.parent().test()) roots.push_back(item);
      }
      break;
    }
    default:
      break;
  }

  context.log.info("Scanning finished, rootItems:%d", static_cast<int>(roots.size()));
  for (const CVxUser_Item& root : roots) context.log.info("Root item:%s\n", root.name().c_str());
}
