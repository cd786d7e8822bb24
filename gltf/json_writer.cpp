#include "gltf/json_writer.h"

#include <cerrno>
#include <cstring>
#include <limits>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "gltf/paths.h"
#include "gltf/write_tables.h"

namespace gltf {

JsonRoot::JsonRoot(const GltfDocument::Impl& d, const std::string& bufferUri) {
  addMember(asset_, "generator", Value(rapidjson::StringRef("Vexov11.2")), allocator_);
  addMember(asset_, "version", Value(rapidjson::StringRef("2.0")), allocator_);

  WriteTables tables;
  numberMeshesAndSkins(d, tables);
  Value sceneNodes(rapidjson::kArrayType);
  buildNodes(d, tables, nodes_, sceneNodes, allocator_);
  Value scene(rapidjson::kObjectType);
  addMember(scene, "nodes", std::move(sceneNodes), allocator_);
  scenes_.PushBack(scene, allocator_);
  animations_ = buildAnimations(d, tables, allocator_);
  skins_ = buildSkins(d, tables, allocator_);
  if (tables.meshesDropped) meshes_ = buildMeshes(d, tables, allocator_);

  Value buffer(rapidjson::kObjectType);
  addMember(buffer, "byteLength", static_cast<unsigned>(d.bufferLength), allocator_);
  if (!bufferUri.empty()) addMember(buffer, "uri", text(bufferUri, allocator_), allocator_);
  buffers_.PushBack(buffer, allocator_);

  bool unlit = false;
  for (const bool u : d.unlitMaterials) unlit = unlit || u;
  if (unlit) extensionsUsed_.PushBack(Value(rapidjson::StringRef("KHR_materials_unlit")), allocator_);

  add("asset", asset_);
  add("scene", scene_);
  if (unlit) add("extensionsUsed", extensionsUsed_);
  add("scenes", scenes_);
  add("nodes", nodes_);
  add("meshes", tables.meshesDropped ? meshes_ : d.meshes);
  add("buffers", buffers_);
  add("bufferViews", d.bufferViews);
  add("accessors", d.accessors);
  // The rest only when they hold something.
  const std::pair<const char*, const Value*> optional[] = {
      {"materials", &d.materials}, {"textures", &d.textures},     {"images", &d.images}, {"samplers", &d.samplers},
      {"animations", &animations_}, {"skins", &skins_}, {"cameras", &d.cameras}};
  for (const auto& [key, value] : optional) {
    if (!value->Empty()) add(key, *value);
  }
}

std::string bufferUriFor(const GltfDocument::Impl& d, const std::string& destination) {
  if (d.settings.separateFiles == 0) return std::string();
  return uriFromFileName(pathFileName(pathStem(destination) + ".bin"));
}

std::string JsonRoot::toJson() const {
  rapidjson::StringBuffer buffer(nullptr, 256);
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  accept(writer);
  return std::string(buffer.GetString(), buffer.GetSize());
}

}  // namespace gltf

std::string GltfDocument::json(const std::string& destination) {
  impl_->finishAll();
  return gltf::JsonRoot(*impl_, gltf::bufferUriFor(*impl_, destination)).toJson();
}

bool GltfDocument::write(const std::string& destination) {
  Impl& d = *impl_;
  d.finishAll();
  std::string error;
  bool written = false;
  if (d.bufferLength > std::numeric_limits<std::uint32_t>::max()) {
    // Every length and offset in the file is 32 bits wide.
    error = "Cannot write " + destination + ": " + std::strerror(EFBIG);
  } else if (d.settings.separateFiles != 0) {
    written = gltf::writeGltf(d, destination, error);
  } else {
    written = gltf::writeGlb(d, destination, error);
  }
  if (!written) d.error(error);
  return written;
}
