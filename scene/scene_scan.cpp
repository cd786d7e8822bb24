#include "scene_scan.h"

#include "host/actor.h"
#include "host/locator.h"

namespace {

// Whether any actor of the "currentGroups" list plays the action now.
bool actionIsActive(const ExportContext& context, const CVxUser_Item& action) {
  for (const CVxUser_Item& actorItem : context.actors)
    if (CVxActor(context.scene, actorItem).isActive(action)) return true;
  return false;
}

void scanAction(ExportContext& context, const CVxUser_Item& action) {
  const bool active = actionIsActive(context, action);
  std::int32_t enabled = 1;
  context.edit.integer(action, action.channelIndex("enabled"), enabled);
  context.log.info("Action:%s active:%d enabled:%d", action.name().c_str(), active ? 1 : 0, static_cast<int>(enabled));
  context.actions.push_back(action);
}

void scanIKSolver(ExportContext& context, const CVxUser_Item& solver) {
  context.log.info("IKSolver:%s", solver.name().c_str());
  const CVxUser_Item root = CVxIKChain(context.scene, solver).root();
  if (root.test()) context.log.info("IK root:%s", root.name().c_str());
}

// Reports what one item brings to the export that the walk cannot see.
void scanItem(ExportContext& context, const CVxUser_Item& item) {
  if (item.isA(context.types.replicator)) context.log.info("Replicator:%s", item.name().c_str());
  if (item.isA(context.types.ikFullBody)) scanIKSolver(context, item);
  if (item.isA(context.types.actionclip)) scanAction(context, item);
  if (item.isA(context.types.locator) && !CVxLocator(context.scene, item).test())
    context.log.error("Failed to obtain locator for item:%s", item.name().c_str());
}

// The actors the user works with now; the animation phase exports the first.
void findActors(ExportContext& context) {
  const CVxCurrentGroups groups(context.scene);
  for (unsigned i = 0; i < groups.count(); ++i) {
    const CVxUser_Item item = groups.item(i);
    if (CVxActor(context.scene, item).test()) context.actors.push_back(item);
  }
}

void reportActorsAndChains(ExportContext& context) {
  for (const CVxUser_Item& item : context.actors) {
    const CVxActor actor(context.scene, item);
    context.log.info("---   Actor:%s actions:%d items:%d chans:%d", item.name().c_str(),
                     static_cast<int>(actor.actionCount()), static_cast<int>(actor.itemCount()),
                     static_cast<int>(actor.channelCount()));
  }
  const VxTypeCode ikFullBody = context.types.ikFullBody;
  const unsigned solvers = context.scene.itemCount(ikFullBody);
  for (unsigned i = 0; i < solvers; ++i) {
    const CVxUser_Item solver = context.scene.item(ikFullBody, i);
    // The host builds the chain from the solver's "ik.joint" links.
    const CVxIKChain chain(context.scene, solver);
    if (chain.count() == 0) continue;
    context.log.info("Processing IK root:%s", chain.root().name().c_str());
    for (unsigned j = 0; j < chain.count(); ++j) context.log.info("IK joint:%s", chain.joint(j).name().c_str());
  }
}

}  // namespace

void scanScene(ExportContext& context) {
  const CVxUser_Scene& scene = context.scene;
  const CVxUser_Item sceneItem = scene.sceneItem();
  std::vector<CVxUser_Item>& roots = context.rootItems;
  roots.clear();
  context.actors.clear();
  context.actions.clear();
  findActors(context);

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
  reportActorsAndChains(context);
}
