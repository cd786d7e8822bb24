#include <algorithm>
#include <cstring>
#include <utility>

#include "gltf/document_impl.h"
#include "gltf/write_tables.h"

using gltf::Value;

namespace {

using AttributeList = std::vector<std::pair<std::string, std::uint32_t>>;

// Attribute keys are written in this order; a numbered set sorts by its number.
const char* const kAttributeOrder[] = {"POSITION", "NORMAL", "COLOR_", "TEXCOORD_", "TANGENT", "JOINTS_", "WEIGHTS_"};

std::pair<unsigned, unsigned long> rankOf(const std::string& name) {
  unsigned group = 0;
  for (const char* prefix : kAttributeOrder) {
    const std::size_t length = std::strlen(prefix);
    const bool numbered = prefix[length - 1] == '_';
    if (numbered ? name.compare(0, length, prefix) == 0 : name == prefix) {
      if (!numbered) return {group, 0};
      const std::string digits = name.substr(length);
      if (!digits.empty() && digits.size() < 9 &&
          std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return {group, std::stoul(digits)};
      }
    }
    ++group;
  }
  return {group, 0};
}

struct PrimitiveParts {
  std::uint32_t indices = kGltfNone;
  std::uint32_t mode = 4;
  std::uint32_t material = kGltfNone;
  AttributeList attributes;
};

PrimitiveParts partsOf(const Value& primitive) {
  PrimitiveParts parts;
  if (primitive.HasMember("indices")) parts.indices = primitive["indices"].GetUint();
  parts.mode = primitive["mode"].GetUint();
  if (primitive.HasMember("material")) parts.material = primitive["material"].GetUint();
  for (const auto& attribute : primitive["attributes"].GetObject()) {
    parts.attributes.emplace_back(attribute.name.GetString(), attribute.value.GetUint());
  }
  return parts;
}

Value primitiveOf(PrimitiveParts parts, gltf::Allocator& allocator) {
  std::stable_sort(parts.attributes.begin(), parts.attributes.end(),
                   [](const auto& a, const auto& b) { return rankOf(a.first) < rankOf(b.first); });
  Value attributes(rapidjson::kObjectType);
  for (const auto& [name, accessor] : parts.attributes) {
    attributes.AddMember(gltf::text(name, allocator), Value(accessor), allocator);
  }
  Value primitive(rapidjson::kObjectType);
  if (parts.indices != kGltfNone) gltf::addMember(primitive, "indices", parts.indices, allocator);
  gltf::addMember(primitive, "mode", parts.mode, allocator);
  if (parts.material != kGltfNone) gltf::addMember(primitive, "material", parts.material, allocator);
  gltf::addMember(primitive, "attributes", std::move(attributes), allocator);
  return primitive;
}

}  // namespace

std::uint32_t GltfDocument::addMesh() {
  Impl& d = *impl_;
  Value mesh(rapidjson::kObjectType);
  gltf::addMember(mesh, "primitives", Value(rapidjson::kArrayType), d.allocator);
  return d.appendTo(d.meshes, mesh);
}

std::uint32_t GltfDocument::addPrimitive(std::uint32_t mesh, const GltfPrimitiveDesc& primitive) {
  Impl& d = *impl_;
  if (!d.validMesh(mesh)) return kNone;
  PrimitiveParts parts;
  parts.indices = primitive.indices;
  parts.mode = primitive.mode;
  parts.material = primitive.material;
  for (const GltfAttribute& attribute : primitive.attributes) {
    const auto same = std::find_if(parts.attributes.begin(), parts.attributes.end(),
                                   [&](const auto& a) { return a.first == attribute.name; });
    if (same != parts.attributes.end()) {
      same->second = attribute.accessor;
    } else {
      parts.attributes.emplace_back(attribute.name, attribute.accessor);
    }
  }
  Value object = primitiveOf(std::move(parts), d.allocator);
  return d.appendTo(d.meshes[mesh]["primitives"], object);
}

bool GltfDocument::setPrimitiveAttribute(std::uint32_t mesh, std::uint32_t primitive, const std::string& name,
                                         std::uint32_t accessor) {
  Impl& d = *impl_;
  if (primitive >= primitiveCount(mesh) || name.empty()) return false;
  Value& object = d.meshes[mesh]["primitives"][primitive];
  PrimitiveParts parts = partsOf(object);
  const auto same =
      std::find_if(parts.attributes.begin(), parts.attributes.end(), [&](const auto& a) { return a.first == name; });
  if (same != parts.attributes.end()) {
    same->second = accessor;
  } else {
    parts.attributes.emplace_back(name, accessor);
  }
  object = primitiveOf(std::move(parts), d.allocator);
  return true;
}

bool GltfDocument::setPrimitiveMaterial(std::uint32_t mesh, std::uint32_t primitive, std::uint32_t material) {
  Impl& d = *impl_;
  if (primitive >= primitiveCount(mesh)) return false;
  Value& object = d.meshes[mesh]["primitives"][primitive];
  PrimitiveParts parts = partsOf(object);
  parts.material = material;
  object = primitiveOf(std::move(parts), d.allocator);
  return true;
}

std::uint32_t GltfDocument::primitiveCount(std::uint32_t mesh) const {
  return impl_->validMesh(mesh) ? impl_->meshes[mesh]["primitives"].Size() : 0;
}

namespace gltf {

void numberMeshesAndSkins(const GltfDocument::Impl& d, WriteTables& tables) {
  // glTF wants at least one primitive per mesh and one joint per skin: the
  // others are left out and whatever pointed at them loses that key.
  tables.meshIndex.clear();
  std::uint32_t next = 0;
  for (const auto& mesh : d.meshes.GetArray()) {
    tables.meshIndex.push_back(mesh["primitives"].Empty() ? kGltfNone : next++);
  }
  tables.meshesDropped = next != d.meshes.Size();
  tables.skinIndex.clear();
  next = 0;
  for (const Skin& skin : d.skins) tables.skinIndex.push_back(skin.joints.empty() ? kGltfNone : next++);
}

Value buildMeshes(const GltfDocument::Impl& d, const WriteTables& tables, Allocator& allocator) {
  Value meshes(rapidjson::kArrayType);
  for (rapidjson::SizeType i = 0; i < d.meshes.Size(); ++i) {
    if (tables.meshIndex[i] != kGltfNone) meshes.PushBack(Value(d.meshes[i], allocator), allocator);
  }
  return meshes;
}

}  // namespace gltf
