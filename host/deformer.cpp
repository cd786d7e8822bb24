#include "deformer.h"

CVxItemGraph::CVxItemGraph(const CVxUser_Scene& scene, const CVxUser_Item& item, const char* graph) {
  IVxDeformService* service = scene.raw() ? scene.raw()->DeformService() : nullptr;
  IVxItemGraph* links = nullptr;
  if (service && item.test() && VxOk(service->ItemGraph(item.raw(), graph, &links))) graph_ = links;
}

CVxItemGraph::~CVxItemGraph() {
  if (graph_) graph_->Release();
}

bool CVxItemGraph::link(unsigned index, CVxUser_Item& item) const {
  IVxItem* linked = nullptr;
  if (!graph_ || VxFailed(graph_->LinkByIndex(index, &linked)) || !linked) return false;
  item = CVxUser_Item(linked);
  return true;
}

CVxDeformService::CVxDeformService(const CVxUser_Scene& scene)
    : service_(scene.raw() ? scene.raw()->DeformService() : nullptr) {}

bool CVxDeformService::isInfluence(const CVxUser_Item& item) const {
  return service_ && item.test() && service_->TestInfluence(item.raw()) == VXR_OK;
}

CVxUser_Item CVxDeformService::joint(const CVxUser_Item& influence) const {
  IVxItem* joint = nullptr;
  if (!service_ || !influence.test() || VxFailed(service_->InfluenceJoint(influence.raw(), &joint))) return {};
  return CVxUser_Item(joint);
}

namespace {

class WeightCollector final : public IVxMapPointVisitor {
 public:
  explicit WeightCollector(std::vector<CVxPointWeight>& pairs) : pairs_(pairs) {}
  VxResult Point(unsigned point, const float* values) override {
    pairs_.push_back({point, values[0]});
    return VXR_OK;
  }

 private:
  std::vector<CVxPointWeight>& pairs_;
};

}  // namespace

bool readWeightMap(const CVxMesh& mesh, const std::string& name, std::vector<CVxPointWeight>& pairs) {
  pairs.clear();
  IVxMesh* raw = mesh.raw();
  VxMapID map = VX_MAP_NONE;
  if (!raw || VxFailed(raw->MapLookup(VX_VMAP_WEIGHT, name.c_str(), &map)) || map == VX_MAP_NONE) return false;
  WeightCollector collector(pairs);
  if (VxOk(raw->MapEnumeratePoints(map, &collector))) return true;
  pairs.clear();
  return false;
}
