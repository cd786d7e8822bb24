#include "transform_analysis.h"

#include <initializer_list>


namespace {

const char* const kMatrixChannels[kDrivenCount] = {"wposMatrix", "wrotMatrix", "wsclMatrix",
                                                   "worldMatrix", "localMatrix", "parentMatrix"};

// Fixed lists that allocate nothing: the module's loading must not be able to fail.
const std::initializer_list<const char*> kRotationOffsetNames = {"RotationOffset", "RotationOff", "RotOffset", "RotOff"};
const std::initializer_list<const char*> kRotationPivotNames = {"RotationPivot", "RotationPiv", "RotationPvt",
                                                      "RotPivot",      "RotPiv",      "RotPvt"};
const std::initializer_list<const char*> kScalingOffsetNames = {"ScalingOffset", "ScalingOff", "ScaleOffset",
                                                      "ScaleOff",      "SclOffset",  "SclOff"};
const std::initializer_list<const char*> kScalingPivotNames = {"ScalingPivot", "ScalingPiv", "ScalingPvt",
                                                     "ScalePivot",   "ScalePiv",   "ScalePvt",
                                                     "SclPivot",     "SclPiv",     "SclPvt"};

bool nameMatches(const std::string& name, std::initializer_list<const char*> candidates) {
  for (const char* candidate : candidates)
    if (name.find(candidate) != std::string::npos) return true;
  return false;
}

// The slot a translation item fills by its name: the first list with a match decides.
int translationSlot(const std::string& name) {
  if (nameMatches(name, kRotationOffsetNames)) return kRotationOffset;
  if (nameMatches(name, kRotationPivotNames)) return kRotationPivot;
  if (nameMatches(name, kScalingOffsetNames)) return kScalingOffset;
  if (nameMatches(name, kScalingPivotNames)) return kScalingPivot;
  return -1;
}

}  // namespace

void analyseTransforms(ExportContext& context, const CVxLocator& locator, const CVxUser_Item& item,
                       TransformAnalysis& analysis) {
  const ItemTypes& types = context.types;
  GltfLogMsg& log = context.log;
  const CVxUser_Item mainPosition = locator.mainTransform(VX_XFRM_POSITION);
  const CVxUser_Item mainRotation = locator.mainTransform(VX_XFRM_ROTATION);
  const CVxUser_Item mainScale = locator.mainTransform(VX_XFRM_SCALE);

  const CVxChannelLinks links(context.scene);
  for (int i = 0; i < kDrivenCount; ++i) analysis.driven[i] = links.isDriven(item, item.channelIndex(kMatrixChannels[i]));

  for (unsigned channel = 0; channel < item.channelCount(); ++channel) {
    if (!links.isDriven(item, static_cast<int>(channel))) continue;
    ++analysis.drivenChannels;
    log.info("   Driven channel:%s", item.channelName(channel).c_str());
  }

  const unsigned count = locator.transformCount();
  for (unsigned index = 0; index < count; ++index) {
    const CVxUser_Item transform = locator.transform(index);
    for (unsigned channel = 0; channel < transform.channelCount(); ++channel) {
      if (!links.isDriven(transform, static_cast<int>(channel))) continue;
      ++analysis.drivenTransformChannels;
      log.info("   Driven xform channel:%s.%s", transform.name().c_str(), transform.channelName(channel).c_str());
    }
  }

  for (unsigned index = 0; index < count; ++index) {
    const CVxUser_Item transform = locator.transform(index);
    const std::string name = transform.name();
    const std::int32_t position = static_cast<std::int32_t>(index);
    int slot = -1;
    bool main = false;
    if (transform.isA(types.scale)) {
      if (transform == mainScale) slot = kMainScale, main = true;
    } else if (transform.isA(types.rotation)) {
      if (transform == mainRotation)
        slot = kMainRotation, main = true;
      else
        slot = analysis.slots[kMainRotation] < 0 ? kRotationBefore : kRotationAfter;
    } else if (transform.isA(types.translation)) {
      if (transform == mainPosition)
        slot = kMainPosition, main = true;
      else
        slot = translationSlot(name);
    } else if (transform.isA(types.transform)) {
      if (nameMatches(name, kRotationPivotNames))
        slot = kRotationPivotCompensation;
      else if (nameMatches(name, kScalingPivotNames))
        slot = kScalingPivotCompensation;
      for (const char* channel : {"pos.X", "pos.Y", "pos.Z"})
        analysis.sampledChannels.emplace_back(transform, transform.channelIndex(channel));
    }
    // "shear" items are recognised and stay unclassified.
    if (slot < 0) continue;
    analysis.slots[slot] = position;
    if (!main) analysis.idents[slot].push_back(transform.ident());
  }
}
