#include "engine/evaluation.h"

#include <algorithm>
#include <cmath>
#include <variant>

#include "engine/item.h"

namespace vexo {
namespace {

RotationOrder orderOf(double value) {
  const double rounded = std::round(value);
  return rounded >= 0.0 && rounded < kRotationOrderCount ? static_cast<RotationOrder>(static_cast<int>(rounded))
                                                          : RotationOrder::XYZ;
}

}  // namespace

Evaluation::Evaluation(const Scene& scene, std::string_view action, double time)
    : scene_(scene), action_(action), time_(time) {
  computedRevision_ = scene_.valueRevision() + 1;  // nothing computed yet
  refresh();
}

void Evaluation::setTime(double time) {
  refresh();
  time_ = time;
  ++generation_;  // the matrices computed so far no longer count; their slots are reused
}

bool Evaluation::known(const MatrixKey& key) const {
  auto it = computed_.find(key);
  return it != computed_.end() && it->second.generation == generation_;
}

void Evaluation::refresh() {
  if (computedRevision_ == scene_.valueRevision()) return;
  computed_.clear();
  resolved_.clear();
  activeActionsKnown_ = false;
  computedRevision_ = scene_.valueRevision();
}

std::pair<const Item*, std::size_t> Evaluation::source(const Item& item, std::size_t channel) const {
  const Item* current = &item;
  std::size_t currentChannel = channel;
  // The links were refused when they would loop, so a chain ends within as many steps as there are links.
  for (std::size_t steps = 0; steps <= scene_.links().size(); ++steps) {
    const auto& incoming = scene_.links().incoming(*current, currentChannel);
    if (incoming.empty()) break;
    current = incoming.back().from;
    currentChannel = incoming.back().fromChannel;
  }
  return {current, currentChannel};
}

Evaluation::Own Evaluation::resolve(const Item& item, std::size_t channel) {
  auto own = [&](std::string_view action) {
    Own found;
    found.keys = item.actionKeys(channel, action);
    if (!found.keys) found.value = item.actionValue(channel, action);
    return found;
  };
  Own found = own(action_);
  if (found.keys || found.value) return found;
  if (action_ == kEditAction) {
    if (!activeActionsKnown_) {
      activeActions_ = activeActionNames(scene_);
      activeActionsKnown_ = true;
    }
    for (const std::string& name : activeActions_) {
      found = own(name);
      if (found.keys || found.value) return found;
    }
  }
  if (action_ != kSetupAction) found = own(kSetupAction);
  return found;
}

const Evaluation::Resolved& Evaluation::resolved(const Item& item, std::size_t channel) {
  std::vector<Resolved>& channels = resolved_[&item];
  if (channels.empty()) {
    channels.reserve(item.channelCount());
    for (std::size_t c = 0; c < item.channelCount(); ++c) {
      const auto [from, fromChannel] = source(item, c);
      const auto which = scene_.locatorTypes().matrixChannelAt(from->typeCode(), fromChannel);
      const Own own = which ? Own{} : resolve(*from, fromChannel);
      channels.push_back({from, fromChannel, which ? static_cast<int>(*which) : -1, own.keys, own.value});
    }
  }
  return channels[channel];
}

const Value& Evaluation::stored(const Item& item, std::size_t channel, const Resolved& r) {
  if (r.value) return *r.value;
  if (!r.keys) return item.channel(channel).initial;
  // An integer channel holds each key's value until the next.
  if (item.channel(channel).type == ValueType::Integer) {
    std::size_t i = 0;
    while (i + 1 < r.keys->size() && r.keys->key(i + 1).time <= time_) ++i;
    keyed_ = static_cast<std::int32_t>(std::lround(r.keys->key(i).value));
  } else {
    keyed_ = r.keys->evaluate(time_);
  }
  return keyed_;
}

const KeyCurve* Evaluation::keys(const Item& item, std::size_t channel) {
  if (channel >= item.channelCount()) return nullptr;
  refresh();
  return resolve(item, channel).keys;
}

const Value* Evaluation::value(const Item& item, std::size_t channel) {
  if (channel >= item.channelCount()) return nullptr;
  if (active_.empty()) refresh();
  const Resolved& r = resolved(item, channel);
  if (r.matrix >= 0) {
    Matrix m;
    if (!compute(*r.from, static_cast<MatrixChannel>(r.matrix), m)) return nullptr;
    scratch_ = m;
    return &scratch_;
  }
  return &stored(*r.from, r.fromChannel, r);
}

bool Evaluation::number(const Item& item, std::size_t channel, double& out) {
  const Value* v = value(item, channel);
  if (!v) return false;
  if (const auto* d = std::get_if<double>(v)) {
    out = *d;
  } else if (const auto* i = std::get_if<std::int32_t>(v)) {
    out = *i;
  } else {
    return false;
  }
  return true;
}

bool Evaluation::matrix(const Item& locator, MatrixChannel which, Matrix& out) {
  if (!scene_.locatorTypes().isLocator(locator.typeCode())) return false;
  const int channel = scene_.locatorTypes().matrixChannel(which);
  if (channel < 0) return compute(locator, which, out);
  const Value* v = value(locator, static_cast<std::size_t>(channel));
  const auto* m = v ? std::get_if<Matrix>(v) : nullptr;
  if (!m) return false;
  out = *m;
  return true;
}

// The nearest ancestor that is a locator, or null.
const Item* Evaluation::locatorAncestor(const Item& item) const {
  const Item* parent = item.parent();
  while (parent && !scene_.locatorTypes().isLocator(parent->typeCode())) parent = parent->parent();
  return parent;
}

bool Evaluation::hierarchyParentWorld(const Item& item, Matrix& out) {
  const Item* ancestor = locatorAncestor(item);
  if (!ancestor) {
    out = identityMatrix();
    return true;
  }
  return matrix(*ancestor, MatrixChannel::World, out);
}

std::optional<Evaluation::MatrixKey> Evaluation::computedSource(const Item& locator, MatrixChannel which) const {
  const int channel = scene_.locatorTypes().matrixChannel(which);
  if (channel < 0) return MatrixKey(&locator, which);
  const auto [from, fromChannel] = source(locator, static_cast<std::size_t>(channel));
  if (auto fromWhich = scene_.locatorTypes().matrixChannelAt(from->typeCode(), fromChannel))
    return MatrixKey(from, *fromWhich);
  return std::nullopt;
}

bool Evaluation::computeDependencies(const MatrixKey& top) {
  std::vector<Step>& pending = pending_;
  pending.assign(1, {top, false});
  std::unordered_set<MatrixKey, MatrixKeyHash>& onPath = onPath_;  // expanded, not yet computed
  onPath.clear();
  std::optional<MatrixKey> needs[2];
  while (!pending.empty()) {
    const MatrixKey key = pending.back().key;
    if (pending.back().expanded) {
      pending.pop_back();
      onPath.erase(key);
      Matrix m;
      if (key != top && !known(key) && !compute(*key.first, key.second, m)) return false;
      continue;
    }
    if (known(key)) {
      pending.pop_back();
      continue;
    }
    pending.back().expanded = true;
    onPath.insert(key);
    const Item& locator = *key.first;
    needs[0] = needs[1] = std::nullopt;
    switch (key.second) {
      case MatrixChannel::Local:
        break;
      case MatrixChannel::Parent:
        if (const Item* ancestor = locatorAncestor(locator)) needs[0] = computedSource(*ancestor, MatrixChannel::World);
        break;
      case MatrixChannel::World:
        needs[0] = computedSource(locator, MatrixChannel::Local);
        needs[1] = computedSource(locator, MatrixChannel::Parent);
        break;
      case MatrixChannel::WorldPosition:
      case MatrixChannel::WorldRotation:
      case MatrixChannel::WorldScale:
        needs[0] = computedSource(locator, MatrixChannel::World);
        break;
    }
    for (const std::optional<MatrixKey>& need : needs) {
      if (!need || known(*need)) continue;
      if (onPath.count(*need)) return false;  // it needs itself
      pending.push_back({*need, false});
    }
  }
  return true;
}

bool Evaluation::compute(const Item& locator, MatrixChannel which, Matrix& out) {
  const MatrixKey key(&locator, which);
  if (active_.empty()) refresh();
  if (auto found = computed_.find(key); found != computed_.end() && found->second.generation == generation_) {
    out = found->second.matrix;
    return true;
  }
  // While the dependencies are worked through, each one's own are known already.
  if (active_.empty() && !inDependencies_) {
    inDependencies_ = true;
    const bool ok = computeDependencies(key);
    inDependencies_ = false;
    if (!ok) return false;
  }
  if (std::find(active_.begin(), active_.end(), key) != active_.end()) return false;
  active_.push_back(key);

  bool ok = true;
  Matrix a, b;
  switch (which) {
    case MatrixChannel::Local:
      out = identityMatrix();
      for (const Item* transform : locator.transforms()) {
        ok = ok && transformMatrix(*transform, a);
        if (ok) out = multiply(out, a);
      }
      break;
    case MatrixChannel::Parent:
      ok = hierarchyParentWorld(locator, out);
      break;
    case MatrixChannel::World:
      ok = matrix(locator, MatrixChannel::Local, a) && matrix(locator, MatrixChannel::Parent, b);
      if (ok) out = multiply(a, b);
      break;
    case MatrixChannel::WorldPosition:
    case MatrixChannel::WorldRotation:
    case MatrixChannel::WorldScale:
      ok = matrix(locator, MatrixChannel::World, a);
      if (ok) {
        out = which == MatrixChannel::WorldPosition   ? translationPart(a)
              : which == MatrixChannel::WorldRotation ? rotationPart(a)
                                                      : scalePart(a);
      }
      break;
  }
  active_.pop_back();
  if (ok) computed_[key] = {out, generation_};
  return ok;
}

const int* Evaluation::transformChannels(TypeCode type) {
  const auto index = static_cast<std::size_t>(type);
  if (index >= transformChannels_.size()) transformChannels_.resize(index + 1);
  std::vector<int>& channels = transformChannels_[index];
  if (channels.empty()) {
    static const char* const names[kTransformChannels] = {"pos.X", "pos.Y", "pos.Z", "rot.X",  "rot.Y",
                                                          "rot.Z", "order", "scl.X", "scl.Y",  "scl.Z",
                                                          "shr.XY", "shr.XZ", "shr.YZ"};
    for (const char* name : names) channels.push_back(scene_.types().findChannel(type, name));
  }
  return channels.data();
}

double Evaluation::channelNumber(const Item& item, int channel, double fallback) {
  double v = fallback;
  if (channel >= 0) number(item, static_cast<std::size_t>(channel), v);
  return v;
}

Vector3 Evaluation::vector3(const Item& item, const int* channels, double fallback) {
  return {channelNumber(item, channels[0], fallback), channelNumber(item, channels[1], fallback),
          channelNumber(item, channels[2], fallback)};
}

bool Evaluation::transformMatrix(const Item& transform, Matrix& out) {
  const std::optional<TransformKind> kind = scene_.locatorTypes().transformKind(transform.typeCode());
  if (!kind) return false;
  const int* c = transformChannels(transform.typeCode());
  auto translation = [&] { return translationMatrix(vector3(transform, c + kPosX, 0.0)); };
  auto rotation = [&] {
    return rotationMatrix(vector3(transform, c + kRotX, 0.0), orderOf(channelNumber(transform, c[kOrder], 0.0)));
  };
  auto scale = [&] { return scaleMatrix(vector3(transform, c + kSclX, 1.0)); };
  switch (*kind) {
    case TransformKind::Translation:
      out = translation();
      break;
    case TransformKind::Rotation:
      out = rotation();
      break;
    case TransformKind::Scale:
      out = scale();
      break;
    case TransformKind::Transform:
      out = multiply(multiply(scale(), rotation()), translation());
      break;
    case TransformKind::Shear:
      out = shearMatrix(channelNumber(transform, c[kShrXY], 0.0), channelNumber(transform, c[kShrXZ], 0.0),
                        channelNumber(transform, c[kShrYZ], 0.0));
      break;
  }
  return true;
}

}  // namespace vexo
