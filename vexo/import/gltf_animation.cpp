// glTF animations as the host's actions: one actor holds the animated nodes,
// and each animation is one of its actions, keyed on the nodes' main
// position, rotation and scale transforms. The first action is active, and
// the scene's time range is its range.
#include <algorithm>
#include <cmath>
#include <set>

#include "animation/actors.h"
#include "engine/item.h"
#include "import/gltf_accessors.h"
#include "import/gltf_import.h"
#include "import/gltf_transform.h"

namespace vexo {
namespace {

// Rotation keys are Euler angles, which the host interpolates linearly; a
// span is cut into steps of at most this angle, so that between keys the
// host's rotation stays close to glTF's spherical interpolation.
const double kMaxStepRadians = 5.0 * std::acos(-1.0) / 180.0;

struct Curve3 {
  std::vector<Key> keys[3];
};

}  // namespace

bool GltfImport::addAnimations() {
  if (model_.animations.empty()) return true;
  const std::string actorName = "Animations";
  Item* actor = scene_.addItem(type("actor"), actorName, freeIdent(actorName));
  if (!actor) return fail("cannot add the animations' actor");
  std::set<std::string> actionNames;
  Item* first = nullptr;
  double firstStart = 0, firstEnd = 0;
  for (std::size_t i = 0; i < model_.animations.size(); ++i) {
    const tinygltf::Animation& animation = model_.animations[i];
    // Keys are held per action name, so each animation needs a name of its own.
    const std::string name = uniqueIdent(nameOr(animation.name, "Animation" + std::to_string(i)),
                                         [&](const std::string& candidate) { return actionNames.count(candidate) > 0; });
    actionNames.insert(name);
    Item* action = scene_.addItem(type("actionclip"), name, freeIdent(name), actor);
    if (!action) return fail("cannot add the action of animation " + std::to_string(i));
    double start = INFINITY, end = -INFINITY;
    if (!addAnimation(animation, *action, start, end)) return false;
    if (!first && start <= end) first = action, firstStart = start, firstEnd = end;
  }
  std::vector<Item*> members;
  for (Item* item : nodeItems_)
    if (item && std::find(members.begin(), members.end(), item) == members.end()) {
      for (int m = 0; m < kMainTransformCount; ++m) {
        Item* transform = item->mainTransform(static_cast<MainTransform>(m));
        bool keyed = false;
        for (std::size_t c = 0; transform && c < transform->channelCount() && !keyed; ++c)
          keyed = !transform->keyedActions(c).empty();
        if (keyed) {
          members.push_back(item);
          break;
        }
      }
    }
  scene_.actors().setMembers(*actor, members);
  if (first) {
    setActionActive(scene_, *first, true);
    setChannel(scene_.sceneItem(), "currentS", firstStart);
    setChannel(scene_.sceneItem(), "currentE", firstEnd);
  }
  return true;
}

bool GltfImport::addAnimation(const tinygltf::Animation& animation, Item& action, double& start, double& end) {
  const std::string what = "animation " + nameOr(animation.name, "");
  for (const tinygltf::AnimationChannel& channel : animation.channels) {
    if (channel.target_path == "weights") {
      warn(what + ": morph target weights are left out");
      continue;
    }
    if (channel.target_node < 0 || static_cast<std::size_t>(channel.target_node) >= model_.nodes.size())
      return fail(what + " targets node " + std::to_string(channel.target_node) + ", which does not exist");
    Item* item = nodeItems_[static_cast<std::size_t>(channel.target_node)];
    if (!item) continue;  // outside the loaded scene
    if (channel.sampler < 0 || static_cast<std::size_t>(channel.sampler) >= animation.samplers.size())
      return fail(what + " names sampler " + std::to_string(channel.sampler) + ", which does not exist");
    const tinygltf::AnimationSampler& sampler = animation.samplers[static_cast<std::size_t>(channel.sampler)];
    const bool rotation = channel.target_path == "rotation";
    MainTransform main;
    const char* const* channels;
    static const char* const kPosition[3] = {"pos.X", "pos.Y", "pos.Z"};
    static const char* const kRotation[3] = {"rot.X", "rot.Y", "rot.Z"};
    static const char* const kScale[3] = {"scl.X", "scl.Y", "scl.Z"};
    if (channel.target_path == "translation") main = MainTransform::Position, channels = kPosition;
    else if (rotation) main = MainTransform::Rotation, channels = kRotation;
    else if (channel.target_path == "scale") main = MainTransform::Scale, channels = kScale;
    else {
      warn(what + ": channels of path \"" + channel.target_path + "\" are left out");
      continue;
    }
    std::string error;
    std::vector<float> times, values;
    const int components = rotation ? 4 : 3;
    if (!readAccessorFloats(model_, sampler.input, 1, times, error)) return fail(what + " input: " + error);
    if (!readAccessorFloats(model_, sampler.output, components, values, error)) return fail(what + " output: " + error);
    const bool cubic = sampler.interpolation == "CUBICSPLINE";
    const bool step = sampler.interpolation == "STEP";
    if (cubic) warn(what + ": cubic spline keys are loaded as their values at the keys, interpolated linearly");
    const std::size_t perKey = cubic ? 3 : 1;
    if (values.size() != times.size() * perKey * std::size_t(components))
      return fail(what + ": a sampler has " + std::to_string(times.size()) + " key times and " +
                  std::to_string(values.size() / std::size_t(components)) + " values");
    if (times.empty()) continue;
    for (std::size_t k = 1; k < times.size(); ++k)
      if (!(times[k] > times[k - 1])) return fail(what + ": key times do not increase at key " + std::to_string(k));
    start = std::min(start, double(times.front()));
    end = std::max(end, double(times.back()));
    // The value of key k, for cubic splines the middle of its three.
    auto value = [&](std::size_t k, int c) { return double(values[(k * perKey + (cubic ? 1 : 0)) * std::size_t(components) + std::size_t(c)]); };
    const Interpolation interpolation = step ? Interpolation::Stepped : Interpolation::Linear;
    Curve3 curve;
    if (!rotation) {
      const double factor = main == MainTransform::Position ? unitScale_ : 1.0;
      for (std::size_t k = 0; k < times.size(); ++k)
        for (int c = 0; c < 3; ++c) curve.keys[c].push_back({times[k], value(k, c) * factor, interpolation});
    } else {
      Vector3 previous{0, 0, 0};
      auto addRotation = [&](double time, const Quaternion& q) {
        previous = curve.keys[0].empty() ? eulerFromQuaternion(q) : nearestEuler(eulerFromQuaternion(q), previous);
        for (int c = 0; c < 3; ++c) curve.keys[c].push_back({time, previous[static_cast<std::size_t>(c)], interpolation});
      };
      auto unit = [&](std::size_t k) {
        Quaternion q{value(k, 0), value(k, 1), value(k, 2), value(k, 3)};
        const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
        if (n > 0) for (double& v : q) v /= n;
        return q;
      };
      for (std::size_t k = 0; k < times.size(); ++k) {
        const Quaternion q = unit(k);
        addRotation(times[k], q);
        if (step || k + 1 == times.size()) continue;
        const Quaternion next = unit(k + 1);
        const int steps = static_cast<int>(std::ceil(rotationAngle(q, next) / kMaxStepRadians));
        for (int s = 1; s < steps; ++s)
          addRotation(times[k] + (times[k + 1] - times[k]) * s / steps, slerp(q, next, double(s) / steps));
      }
    }
    Item* transform = item->mainTransform(main);
    if (!transform) continue;
    for (int c = 0; c < 3; ++c) {
      const int index = scene_.types().findChannel(transform->typeCode(), channels[c]);
      KeyCurve keys;
      std::string problem;
      if (index < 0 || !keys.assign(std::move(curve.keys[c]), &problem))
        return fail(what + ": keys of node " + item->name() + " cannot be set: " + problem);
      transform->setKeys(static_cast<std::size_t>(index), action.name(), std::move(keys));
    }
  }
  return true;
}

}  // namespace vexo
