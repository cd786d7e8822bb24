#include "scene_scan.h"

#include "host/locator.h"

namespace {

class Scanner {
 public:
  Scanner(const CVxUser_Scene& scene, const ItemTypes& types, GltfLogMsg& log, SceneScan& scan)
      : scene_(scene), types_(types), log_(log), scan_(scan) {}

  // Records what one item contributes to the later phases.
  void scanItem(const CVxUser_Item& item) {
    if (item.isA(types_.mask)) scan_.masks.push_back(item);
    if (item.isA(types_.deformGroup)) scan_.deformGroups.push_back(item);
    if (item.isA(types_.replicator)) {
      scan_.replicators.push_back(item);
      log_.info("Replicator:%s", item.name().c_str());
    }
    if (item.isA(types_.morphDeform) && scan_.morphEnableChannel < 0)
      scan_.morphEnableChannel = item.channelIndex("enable");
    if (item.isA(types_.locator) && !CVxLocator(scene_, item).test())
      log_.error("Failed to obtain locator for item:%s", item.name().c_str());
  }

  void scanAllOfType(VxTypeCode type) {
    const unsigned count = scene_.itemCount(type);
    for (unsigned i = 0; i < count; ++i) scanItem(scene_.item(type, i));
  }

 private:
  const CVxUser_Scene& scene_;
  const ItemTypes& types_;
  GltfLogMsg& log_;
  SceneScan& scan_;
};

}  // namespace

SceneScan scanScene(const CVxUser_Scene& scene, const ExportOptions& options, const ItemTypes& types,
                    GltfLogMsg& log) {
  SceneScan scan;
  Scanner scanner(scene, types, log, scan);
  const CVxUser_Item sceneItem = scene.sceneItem();

  // A selection or an item list misses the shader tree and the deformers.
  if (options.geometry != 0 && (options.exportType == 1 || options.exportType == 2)) {
    if (options.materials != 0 && scan.masks.empty()) scanner.scanAllOfType(types.mask);
    if (scan.deformGroups.empty()) scanner.scanAllOfType(types.deformGroup);
  }

  if (options.exportType == 0) {
    const unsigned count = scene.itemCount(VX_TYPE_ANY);
    for (unsigned i = 0; i < count; ++i) {
      const CVxUser_Item item = scene.item(VX_TYPE_ANY, i);
      scanner.scanItem(item);
      if (!item.parent().test() && item.isA(types.locator)) {
        scan.rootItems.push_back(item);
        log.info("Root item:%s\n", item.name().c_str());
      }
    }
  } else if (options.exportType == 1) {
    const unsigned count = scene.selectionCount("item");
    for (unsigned i = 0; i < count; ++i) {
      const CVxUser_Item item = scene.selected("item", i);
      if (!item.test() || item == sceneItem) continue;
      scanner.scanItem(item);
      log.info("%s", item.name().c_str());
      scan.rootItems.push_back(item);
    }
  } else if (options.exportType == 2) {
    const CVxItemList list(scene);
    for (unsigned i = 0; i < list.count(); ++i) {
      const CVxUser_Item item = list.item(i);
      if (!item.test() || item == sceneItem) continue;
      scanner.scanItem(item);
      if (!item.parent().test()) scan.rootItems.push_back(item);
    }
  }

  log.info("Scanning finished, rootItems:%d", static_cast<int>(scan.rootItems.size()));
  for (const CVxUser_Item& root : scan.rootItems) log.info("Root item:%s\n", root.name().c_str());
  return scan;
}
