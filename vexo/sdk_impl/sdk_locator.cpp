#include "sdk_impl/sdk_locator.h"

#include <algorithm>

#include "engine/evaluation.h"
#include "sdk_impl/sdk_scene.h"

namespace vexo {

IVxItem* SdkLocator::Item() { return scene_.wrap(&item_); }

VxResult SdkLocator::evaluate(IVxChannelRead* read, MatrixChannel which, double matrix[16]) {
  if (!read || !matrix || !read->Action()) return VXR_BADARG;
  Evaluation& evaluation = scene_.evaluation(read->Action(), read->Time());
  Matrix m;
  // Fails only for a matrix that needs itself, through links and parents.
  const bool ok = which == MatrixChannel::Parent ? evaluation.hierarchyParentWorld(item_, m)
                                                 : evaluation.matrix(item_, which, m);
  if (!ok) return VXR_FAILED;
  std::copy(m.begin(), m.end(), matrix);
  return VXR_OK;
}

VxResult SdkLocator::WorldMatrix(IVxChannelRead* read, double matrix[16]) {
  return evaluate(read, MatrixChannel::World, matrix);
}

VxResult SdkLocator::LocalMatrix(IVxChannelRead* read, double matrix[16]) {
  return evaluate(read, MatrixChannel::Local, matrix);
}

// The frame of the node the module hangs this item's node under: the world
// matrix of its nearest locator ancestor, whatever drives its "parentMatrix".
VxResult SdkLocator::ParentWorldMatrix(IVxChannelRead* read, double matrix[16]) {
  return evaluate(read, MatrixChannel::Parent, matrix);
}

unsigned SdkLocator::TransformCount() { return static_cast<unsigned>(item_.transforms().size()); }

IVxItem* SdkLocator::TransformByIndex(unsigned index) {
  const auto& transforms = item_.transforms();
  return index < transforms.size() ? scene_.wrap(transforms[index]) : nullptr;
}

IVxItem* SdkLocator::MainTransform(VxMainTransform which) {
  if (which < VX_XFRM_POSITION || which > VX_XFRM_SCALE) return nullptr;
  // VxMainTransform and MainTransform number the three alike.
  return scene_.wrap(item_.mainTransform(static_cast<vexo::MainTransform>(which)));
}

unsigned SdkChannelLinks::IncomingCount(IVxItem* item, unsigned channel) {
  const vexo::Item* target = scene_.unwrap(item);
  return target ? static_cast<unsigned>(scene_.scene().links().incoming(*target, channel).size()) : 0;
}

VxResult SdkChannelLinks::IncomingByIndex(IVxItem* item, unsigned channel, unsigned index, IVxItem** from,
                                          unsigned* fromChannel) {
  const vexo::Item* target = scene_.unwrap(item);
  if (!target || !from || !fromChannel) return VXR_BADARG;
  const auto& incoming = scene_.scene().links().incoming(*target, channel);
  if (index >= incoming.size()) return VXR_OUTOFBOUNDS;
  *from = scene_.wrap(incoming[index].from);
  *fromChannel = static_cast<unsigned>(incoming[index].fromChannel);
  return VXR_OK;
}

VxResult SdkLocatorService::LocatorLookup(IVxItem* item, IVxLocator** locator) {
  if (!item || !locator) return VXR_BADARG;
  vexo::Item* engineItem = scene_.unwrap(item);
  if (!engineItem) return VXR_BADARG;
  if (!scene_.scene().locatorTypes().isLocator(engineItem->typeCode())) return VXR_NOTFOUND;
  auto& view = locators_[engineItem];
  if (!view) view = std::make_unique<SdkLocator>(scene_, *engineItem);
  *locator = view.get();
  return VXR_OK;
}

unsigned SdkLocatorService::ItemListCount() { return static_cast<unsigned>(scene_.scene().itemList().size()); }

IVxItem* SdkLocatorService::ItemListByIndex(unsigned index) {
  const auto& list = scene_.scene().itemList();
  return index < list.size() ? scene_.wrap(list[index]) : nullptr;
}

}  // namespace vexo
