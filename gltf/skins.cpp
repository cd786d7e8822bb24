#include <algorithm>

#include "gltf/document_impl.h"
#include "gltf/write_tables.h"

using gltf::Value;

std::uint32_t GltfDocument::addSkin(const std::string& name) {
  gltf::Skin skin;
  skin.name = name;
  impl_->skins.push_back(std::move(skin));
  return static_cast<std::uint32_t>(impl_->skins.size() - 1);
}

std::uint32_t GltfDocument::addSkinJoint(std::uint32_t skin, std::uint32_t node, const double inverseBind[16]) {
  Impl& d = *impl_;
  if (skin >= d.skins.size() || d.skins[skin].finished || node == 0 || !d.validNode(node)) return kNone;
  static const double kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  const double* matrix = inverseBind ? inverseBind : kIdentity;
  gltf::Skin& s = d.skins[skin];
  s.joints.push_back(node);
  s.inverseBind.insert(s.inverseBind.end(), matrix, matrix + 16);
  return static_cast<std::uint32_t>(s.joints.size() - 1);
}

void GltfDocument::setSkinSkeleton(std::uint32_t skin, std::uint32_t node) {
  Impl& d = *impl_;
  if (skin < d.skins.size() && (node == kNone || (node != 0 && d.validNode(node)))) d.skins[skin].skeleton = node;
}

void GltfDocument::finishSkin(std::uint32_t skin) {
  if (skin < impl_->skins.size()) impl_->finishSkin(impl_->skins[skin]);
}

void GltfDocument::Impl::finishSkin(gltf::Skin& skin) {
  if (skin.finished) return;
  skin.finished = true;
  if (!skin.joints.empty()) skin.accessor = owner->addFloatAccessor(GltfAccessorType::Mat4, skin.inverseBind, false);
}

void GltfDocument::Impl::finishAll() {
  for (gltf::Animation& animation : animations) finishAnimation(animation);
  for (gltf::Skin& skin : skins) finishSkin(skin);
}

namespace gltf {

Value buildSkins(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator) {
  Value skins(rapidjson::kArrayType);
  for (std::size_t i = 0; i < d.skins.size(); ++i) {
    if (tables.skinIndex[i] == kGltfNone) continue;
    const Skin& skin = d.skins[i];
    Value object(rapidjson::kObjectType);
    addMember(object, "inverseBindMatrices", skin.accessor, allocator);
    if (skin.skeleton != kGltfNone) addMember(object, "skeleton", tables.nodeIndex[skin.skeleton], allocator);
    Value joints(rapidjson::kArrayType);
    for (const std::uint32_t joint : skin.joints) joints.PushBack(tables.nodeIndex[joint], allocator);
    addMember(object, "joints", std::move(joints), allocator);
    addMember(object, "name", text(skin.name, allocator), allocator);
    skins.PushBack(object, allocator);
  }
  return skins;
}

}  // namespace gltf
