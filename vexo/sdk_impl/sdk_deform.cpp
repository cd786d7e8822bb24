#include "sdk_impl/sdk_deform.h"

#include <vector>

#include "sdk_impl/sdk_scene.h"

namespace vexo {
namespace {

// A copy of the links at the time of asking, so that later edits of the scene
// cannot move the list under a caller that walks it.
class SdkItemGraph final : public IVxItemGraph {
 public:
  SdkItemGraph(SdkScene& scene, const std::vector<Item*>& links) : scene_(scene), links_(links) {}

  unsigned LinkCount() override { return static_cast<unsigned>(links_.size()); }
  VxResult LinkByIndex(unsigned index, IVxItem** item) override {
    if (!item) return VXR_BADARG;
    if (index >= links_.size()) return VXR_OUTOFBOUNDS;
    *item = scene_.wrap(links_[index]);
    return VXR_OK;
  }
  void Release() override { delete this; }

 private:
  ~SdkItemGraph() = default;

  SdkScene& scene_;
  std::vector<Item*> links_;
};

}  // namespace

VxResult SdkDeformService::ItemGraph(IVxItem* item, const char* graph, IVxItemGraph** links) {
  Item* from = scene_.unwrap(item);
  if (!from || !graph || !links) return VXR_BADARG;
  const std::vector<Item*>* found = scene_.scene().deformGraphs().links(graph, *from);
  if (!found) return VXR_NOTFOUND;
  *links = new SdkItemGraph(scene_, *found);
  return VXR_OK;
}

// An influence counts when it is of the "influence" type and binds a joint.
VxResult SdkDeformService::TestInfluence(IVxItem* item) {
  Item* influence = scene_.unwrap(item);
  if (!influence) return VXR_BADARG;
  const Scene& scene = scene_.scene();
  if (!scene.types().derives(influence->typeCode(), scene.types().find("influence"))) return VXR_FALSE;
  return scene.deformGraphs().links(kDeformJointGraph, *influence) ? VXR_OK : VXR_FALSE;
}

VxResult SdkDeformService::InfluenceJoint(IVxItem* item, IVxItem** joint) {
  Item* influence = scene_.unwrap(item);
  if (!influence || !joint) return VXR_BADARG;
  const std::vector<Item*>* links = scene_.scene().deformGraphs().links(kDeformJointGraph, *influence);
  if (!links) return VXR_NOTFOUND;
  *joint = scene_.wrap(links->front());
  return VXR_OK;
}

}  // namespace vexo
