#include "gltf/document.h"

#include "gltf/document_impl.h"

using gltf::Value;

GltfDocument::Impl::Impl(GltfDocument& document, const GltfSettings& s) : owner(&document), settings(s) {
  nodes.emplace_back();  // the document root

  // The default material sits at 0 so that every material added later starts at 1.
  Value pbr(rapidjson::kObjectType);
  gltf::addMember(pbr, "metallicFactor", gltf::number(0.5), allocator);
  gltf::addMember(pbr, "roughnessFactor", gltf::number(0.5), allocator);
  Value material(rapidjson::kObjectType);
  gltf::addMember(material, "pbrMetallicRoughness", std::move(pbr), allocator);
  appendTo(materials, material);
  unlitMaterials.push_back(false);
}

void GltfDocument::Impl::warning(const std::string& text) const {
  if (settings.log) settings.log->warning(text.c_str());
}

void GltfDocument::Impl::error(const std::string& text) const {
  if (settings.log) settings.log->error(text.c_str());
}

std::uint32_t GltfDocument::Impl::appendTo(Value& array, Value& record) {
  array.PushBack(record, allocator);
  return array.Size() - 1;
}

GltfDocument::GltfDocument(const GltfSettings& settings) : impl_(std::make_unique<Impl>(*this, settings)) {}

GltfDocument::~GltfDocument() = default;

std::uint32_t GltfDocument::addCamera(const char* name, float znear, float yfov) {
  Impl& d = *impl_;
  Value perspective(rapidjson::kObjectType);
  gltf::addMember(perspective, "znear", gltf::number(znear), d.allocator);
  gltf::addMember(perspective, "yfov", gltf::number(yfov), d.allocator);
  Value camera(rapidjson::kObjectType);
  gltf::addMember(camera, "name", gltf::text(name ? name : "", d.allocator), d.allocator);
  gltf::addMember(camera, "type", Value(rapidjson::StringRef("perspective")), d.allocator);
  gltf::addMember(camera, "perspective", std::move(perspective), d.allocator);
  return d.appendTo(d.cameras, camera);
}
