#include "gltf/document_impl.h"
#include "gltf/write_tables.h"

using gltf::Value;

namespace {

const char* const kPaths[] = {"", "translation", "rotation", "scale", "weights"};

std::uint32_t componentsOf(GltfCurveKind kind) {
  switch (kind) {
    case GltfCurveKind::Rotation:
      return 4;
    case GltfCurveKind::Weights:
      return 1;
    default:
      return 3;
  }
}

GltfAccessorType outputTypeOf(GltfCurveKind kind) {
  static const GltfAccessorType kTypes[] = {GltfAccessorType::Scalar, GltfAccessorType::Vec2, GltfAccessorType::Vec3,
                                            GltfAccessorType::Vec4};
  return kTypes[componentsOf(kind) - 1];
}

}  // namespace

std::uint32_t GltfDocument::addAnimation(const std::string& name) {
  impl_->animations.push_back({name, {}, false});
  return static_cast<std::uint32_t>(impl_->animations.size() - 1);
}

std::uint32_t GltfDocument::addCurve(std::uint32_t animation, std::uint32_t node, GltfCurveKind kind) {
  Impl& d = *impl_;
  const auto kindCode = static_cast<std::uint32_t>(kind);
  if (animation >= d.animations.size() || d.animations[animation].finished || node == 0 || !d.validNode(node) ||
      kindCode < 1 || kindCode > 4) {
    return kNone;
  }
  gltf::Curve curve;
  curve.node = node;
  curve.kind = kind;
  d.animations[animation].curves.push_back(std::move(curve));
  return static_cast<std::uint32_t>(d.animations[animation].curves.size() - 1);
}

void GltfDocument::addKey(std::uint32_t animation, std::uint32_t curve, double time, const double v[4]) {
  Impl& d = *impl_;
  if (animation >= d.animations.size() || d.animations[animation].finished || !v) return;
  auto& curves = d.animations[animation].curves;
  if (curve >= curves.size()) return;
  curves[curve].times.push_back(time);
  curves[curve].values.insert(curves[curve].values.end(), v, v + 4);
}

void GltfDocument::finishAnimation(std::uint32_t animation) {
  if (animation < impl_->animations.size()) impl_->finishAnimation(impl_->animations[animation]);
}

void GltfDocument::Impl::finishAnimation(gltf::Animation& animation) {
  if (animation.finished) return;
  animation.finished = true;
  for (gltf::Curve& curve : animation.curves) {
    if (curve.times.empty()) continue;
    const std::uint32_t n = componentsOf(curve.kind);
    std::vector<double> output;
    output.reserve(curve.times.size() * n);
    for (std::size_t key = 0; key < curve.times.size(); ++key) {
      output.insert(output.end(), curve.values.begin() + 4 * key, curve.values.begin() + 4 * key + n);
    }
    curve.input = owner->addFloatAccessor(GltfAccessorType::Scalar, curve.times, true);
    curve.output = owner->addFloatAccessor(outputTypeOf(curve.kind), output, false);
  }
}

namespace gltf {

Value buildAnimations(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator) {
  Value animations(rapidjson::kArrayType);
  for (const Animation& animation : d.animations) {
    Value channels(rapidjson::kArrayType);
    Value samplers(rapidjson::kArrayType);
    for (const Curve& curve : animation.curves) {
      if (curve.input == kGltfNone || curve.output == kGltfNone) continue;
      Value sampler(rapidjson::kObjectType);
      addMember(sampler, "input", curve.input, allocator);
      addMember(sampler, "output", curve.output, allocator);
      addMember(sampler, "interpolation", Value(rapidjson::StringRef("LINEAR")), allocator);
      Value target(rapidjson::kObjectType);
      addMember(target, "node", tables.nodeIndex[curve.node], allocator);
      addMember(target, "path", Value(rapidjson::StringRef(kPaths[static_cast<std::uint32_t>(curve.kind)])),
                allocator);
      Value channel(rapidjson::kObjectType);
      addMember(channel, "sampler", samplers.Size(), allocator);
      addMember(channel, "target", std::move(target), allocator);
      samplers.PushBack(sampler, allocator);
      channels.PushBack(channel, allocator);
    }
    // glTF wants at least one channel per animation.
    if (channels.Empty()) continue;
    Value object(rapidjson::kObjectType);
    addMember(object, "channels", std::move(channels), allocator);
    addMember(object, "samplers", std::move(samplers), allocator);
    addMember(object, "name", text(animation.name, allocator), allocator);
    animations.PushBack(object, allocator);
  }
  return animations;
}

}  // namespace gltf
