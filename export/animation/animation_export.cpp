#include "animation_export.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "clip_tag.h"
#include "core/animated_components.h"
#include "core/matrix4.h"
#include "host/actor.h"
#include "host/keys.h"
#include "host/locator.h"
#include "sample_times.h"
#include "transform_curves.h"

namespace {

struct SampledItem {
  CVxUser_Item item;
  CVxLocator locator;
  Placement rule;
  bool hasParent;
  TransformCurves curves;
  bool reportedNotFinite = false;
};

// A range of key times, empty until the first time is added.
struct TimeRange {
  double start = 0.0;
  double end = 0.0;
  bool empty = true;
  void add(double t) {
    start = empty ? t : std::min(start, t);
    end = empty ? t : std::max(end, t);
    empty = false;
  }
};

const char* const kTransformChannels[3][3] = {
    {"pos.X", "pos.Y", "pos.Z"}, {"rot.X", "rot.Y", "rot.Z"}, {"scl.X", "scl.Y", "scl.Z"}};
const VxMainTransform kMainTransforms[3] = {VX_XFRM_POSITION, VX_XFRM_ROTATION, VX_XFRM_SCALE};

class AnimationPhase {
 public:
  explicit AnimationPhase(ExportContext& context) : c_(context) {}

  void run() {
    const CVxChannelRead setup = c_.scene.channelRead("edit", 0.0);
    const CVxUser_Item sceneItem = c_.scene.sceneItem();
    const double start = readNumber(setup, sceneItem, "currentS");
    const double end = readNumber(setup, sceneItem, "currentE");
    const double rate = samplingRate(readNumber(setup, sceneItem, "fps"), c_.options.sampleAnimFpsMultiplier);
    const double sceneTime = c_.scene.time();

    if (c_.options.exportActionType == 0) {
      items_.clear();
      for (const AnimatedItem& animated : c_.animatedItems) registerItem(animated.item, &animated.components, "edit");
      sample(sceneItem.name(), "edit", start, end, rate);
    } else {
      exportActions(rate);
    }
    c_.scene.setTime(sceneTime);
  }

 private:
  static double readNumber(const CVxChannelRead& read, const CVxUser_Item& item, const char* channel) {
    double value = 0.0;
    read.real(item, item.channelIndex(channel), value);
    return value;
  }

  void exportActions(double rate) {
    const CVxUser_Item actorItem = c_.actors.empty() ? CVxUser_Item() : c_.actors.front();
    const CVxActor actor(c_.scene, actorItem);
    c_.log.info("Actor:%s items:%d channels:%d actions:%d", actor.test() ? actorItem.name().c_str() : "",
                static_cast<int>(actor.itemCount()), static_cast<int>(actor.channelCount()),
                static_cast<int>(actor.actionCount()));
    const int active = actor.activeIndex();

    if (c_.options.exportActionType == 1) {
      for (unsigned i = 0; i < actor.actionCount(); ++i) exportAction(actor, i, rate);
    } else if (c_.options.exportActionType == 2 && active >= 0) {
      exportAction(actor, static_cast<unsigned>(active), rate);
    }

    // Put the user's active action back; when there was none, leave none active.
    if (active >= 0) {
      actor.setActive(actor.actionAt(static_cast<unsigned>(active)), true);
    } else {
      const int now = actor.activeIndex();
      if (now >= 0) actor.setActive(actor.actionAt(static_cast<unsigned>(now)), false);
    }
  }

  void exportAction(const CVxActor& actor, unsigned index, double rate) {
    items_.clear();
    const CVxUser_Item action = index < actor.actionCount() ? actor.actionAt(index) : CVxUser_Item();
    if (!action.test()) return;
    const std::string actionName = action.name();
    const std::string name = clipNameTag(c_, action) + actionName;
    actor.setActive(action, true);

    c_.log.info("Getting animation time range for actor: %s", actor.item().name().c_str());
    const CVxKeys keys(c_.scene, actionName.c_str());
    TimeRange range;
    for (unsigned i = 0; i < actor.itemCount(); ++i) {
      const CVxUser_Item item = actor.itemAt(i);
      if (!item.test()) continue;
      registerItem(item, nullptr, actionName.c_str());
      widenRange(keys, item, range);
    }
    sample(name, actionName.c_str(), range.start, range.end, rate);
    items_.clear();
  }

  // Widens `range` with the key times of the item's position, rotation and
  // scale channels and of its own channels in the action.
  void widenRange(const CVxKeys& keys, const CVxUser_Item& item, TimeRange& range) {
    std::vector<std::pair<CVxUser_Item, int>> channels;
    const CVxLocator locator(c_.scene, item);
    for (int component = 0; component < 3; ++component) {
      const CVxUser_Item transform = locator.mainTransform(kMainTransforms[component]);
      if (!transform.test()) continue;
      for (const char* name : kTransformChannels[component]) channels.emplace_back(transform, transform.channelIndex(name));
    }
    for (unsigned channel = 0; channel < item.channelCount(); ++channel)
      channels.emplace_back(item, static_cast<int>(channel));

    TimeRange own;
    int animated = 0;
    for (const auto& [owner, channel] : channels) {
      if (keys.isAnimated(owner, channel)) ++animated;
      for (double t : keys.times(owner, channel)) own.add(t);
    }
    if (own.empty) {
      if (animated > 0)
        c_.log.warning("Unable to get time range for item:%s, type:%s (%d) with %d animated channels",
                       item.name().c_str(), item.typeName().c_str(), static_cast<int>(item.type()), animated);
      return;
    }
    range.add(own.start);
    range.add(own.end);
  }

  // Marks the item's node for translation, rotation and scale, and keeps it
  // for sampling when one of them moves in `action` (`known`: as the node walk found).
  void registerItem(const CVxUser_Item& item, const AnimatedComponents* known, const char* action) {
    const std::uint32_t node = c_.itemNodes.find(item);
    if (node == GltfDocument::kNone) return;
    c_.log.info("Adding sample xform anim for %s", item.name().c_str());
    c_.document->setNodeAnimated(node);
    CVxLocator locator(c_.scene, item);
    const AnimatedComponents animated = known ? *known : findAnimatedComponents(c_.scene, locator, action);
    if (!animated.any()) return;
    const auto found = c_.nodeTransforms.find(node);
    const Placement rule = found == c_.nodeTransforms.end() ? Placement::Local : found->second.rule;
    items_.push_back({item, locator, rule, item.parent().test(), TransformCurves(node, animated.translation, animated.rotation, animated.scale)});
  }

  void sample(const std::string& name, const char* action, double start, double end, double rate) {
    if (items_.empty()) return;
    GltfDocument& document = *c_.document;
    const std::uint32_t animation = document.addAnimation(name);
    c_.log.info("Init FbxCurves for sampling...");
    for (SampledItem& sampled : items_) sampled.curves.addCurves(document, animation);

    c_.log.info("Sampling...");
    forEachSampleTime(start, end, rate, [&](double t) {
      c_.scene.setTime(t);
      // A reader keeps the time it was made for: each sample needs a new one.
      const CVxChannelRead read = c_.scene.channelRead(action, c_.scene.time());
      for (SampledItem& sampled : items_) sampleItem(sampled, read, t);
    });

    c_.log.info("Deinit FbxCurves after sampling...");
    document.finishAnimation(animation);
    c_.log.info("   start:%f end:%f (%f - %f)", start, end, rate * start, rate * end);
  }

  void sampleItem(SampledItem& sampled, const CVxChannelRead& read, double t) {
    if (sampled.curves.initialised() != 1) return;
    double world[16];
    matrix4::identity(world);
    NodeMatrix chosen{};
    if (!sampled.locator.worldMatrix(read, world)) {
      std::copy(world, world + 16, chosen.matrix);
      chosen.finite = true;
    } else {
      double parent[16];
      const bool parentKnown = sampled.rule == Placement::Local && sampled.hasParent &&
                               sampled.locator.parentWorldMatrix(read, parent);
      chosen = chooseNodeMatrix(world, parentKnown ? parent : nullptr, sampled.rule);
      if (parentKnown && chosen.placement == Placement::World) {
        // The parent's matrix cannot be inverted: the item's own stack places it.
        double own[16];
        if (sampled.locator.localMatrix(read, own)) chosen = chooseNodeMatrix(world, parent, sampled.rule, own);
      }
    }
    if (!chosen.finite) {
      if (!sampled.reportedNotFinite)
        c_.log.error("Matrix of item:%s is not finite at time %f; sampled as the identity", sampled.item.name().c_str(), t);
      sampled.reportedNotFinite = true;
      matrix4::identity(chosen.matrix);
    }
    sampled.curves.append(*c_.document, t, chosen.matrix);
  }

  ExportContext& c_;
  std::vector<SampledItem> items_;
};

}  // namespace

void exportAnimation(ExportContext& context) {
  if (context.options.animation == 0) return;
  AnimationPhase(context).run();
}
