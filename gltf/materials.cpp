#include "gltf/document_impl.h"

using gltf::Value;

namespace {

const char* const kAlphaModes[] = {"OPAQUE", "MASK", "BLEND"};

// "index", "texCoord", then the optional factor under its own key.
Value textureRef(const GltfTextureRef& ref, const char* factorKey, double factor, gltf::Allocator& allocator) {
  Value object(rapidjson::kObjectType);
  gltf::addMember(object, "index", ref.index, allocator);
  gltf::addMember(object, "texCoord", ref.texCoord, allocator);
  if (factorKey) gltf::addMember(object, factorKey, gltf::number(factor), allocator);
  return object;
}

Value materialOf(const GltfMaterialDesc& m, gltf::Allocator& allocator) {
  Value material(rapidjson::kObjectType);
  gltf::addMember(material, "name", gltf::text(m.name, allocator), allocator);
  gltf::addMember(material, "emissiveFactor", gltf::numbers(m.emissiveFactor, 3, allocator), allocator);
  const char* alphaMode = m.alphaMode < 3 ? kAlphaModes[m.alphaMode] : kAlphaModes[0];
  gltf::addMember(material, "alphaMode", Value(rapidjson::StringRef(alphaMode)), allocator);
  gltf::addMember(material, "doubleSided", Value(m.doubleSided), allocator);
  if (m.normalTexture.index != kGltfNone) {
    gltf::addMember(material, "normalTexture", textureRef(m.normalTexture, "scale", m.normalScale, allocator),
                    allocator);
  }
  if (m.occlusionTexture.index != kGltfNone) {
    gltf::addMember(material, "occlusionTexture",
                    textureRef(m.occlusionTexture, "strength", m.occlusionStrength, allocator), allocator);
  }
  if (m.emissiveTexture.index != kGltfNone) {
    gltf::addMember(material, "emissiveTexture", textureRef(m.emissiveTexture, nullptr, 0.0, allocator), allocator);
  }

  Value pbr(rapidjson::kObjectType);
  gltf::addMember(pbr, "baseColorFactor", gltf::numbers(m.baseColorFactor, 4, allocator), allocator);
  gltf::addMember(pbr, "metallicFactor", gltf::number(m.metallicFactor), allocator);
  gltf::addMember(pbr, "roughnessFactor", gltf::number(m.roughnessFactor), allocator);
  if (m.baseColorTexture.index != kGltfNone) {
    gltf::addMember(pbr, "baseColorTexture", textureRef(m.baseColorTexture, nullptr, 0.0, allocator), allocator);
  }
  if (m.metallicRoughnessTexture.index != kGltfNone) {
    gltf::addMember(pbr, "metallicRoughnessTexture",
                    textureRef(m.metallicRoughnessTexture, nullptr, 0.0, allocator), allocator);
  }
  gltf::addMember(material, "pbrMetallicRoughness", std::move(pbr), allocator);

  if (m.unlit) {
    Value extensions(rapidjson::kObjectType);
    gltf::addMember(extensions, "KHR_materials_unlit", Value(rapidjson::kObjectType), allocator);
    gltf::addMember(material, "extensions", std::move(extensions), allocator);
  }
  return material;
}

}  // namespace

std::uint32_t GltfDocument::addMaterial(const GltfMaterialDesc& material) {
  Impl& d = *impl_;
  Value object = materialOf(material, d.allocator);
  d.unlitMaterials.push_back(material.unlit);
  return d.appendTo(d.materials, object);
}

bool GltfDocument::setMaterial(std::uint32_t index, const GltfMaterialDesc& material) {
  Impl& d = *impl_;
  if (index == 0 || index >= d.materials.Size()) return false;
  d.materials[index] = materialOf(material, d.allocator);
  d.unlitMaterials[index] = material.unlit;
  return true;
}

std::uint32_t GltfDocument::addTexture(const std::string& key, const std::string& name, std::uint32_t sampler,
                                       std::uint32_t source) {
  Impl& d = *impl_;
  if (!key.empty()) {
    const auto found = d.textureByKey.find(key);
    if (found != d.textureByKey.end()) return found->second;
  }
  if (source == kNone || source >= d.images.Size()) return kNone;
  Value texture(rapidjson::kObjectType);
  if (!name.empty()) gltf::addMember(texture, "name", gltf::text(name, d.allocator), d.allocator);
  if (sampler != kNone) gltf::addMember(texture, "sampler", sampler, d.allocator);
  gltf::addMember(texture, "source", source, d.allocator);
  const std::uint32_t index = d.appendTo(d.textures, texture);
  if (!key.empty()) d.textureByKey.emplace(key, index);
  return index;
}

std::uint32_t GltfDocument::addSampler(std::uint32_t wrapS, std::uint32_t wrapT) {
  Impl& d = *impl_;
  Value sampler(rapidjson::kObjectType);
  gltf::addMember(sampler, "wrapS", wrapS, d.allocator);
  gltf::addMember(sampler, "wrapT", wrapT, d.allocator);
  return d.appendTo(d.samplers, sampler);
}
