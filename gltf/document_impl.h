// The inside of GltfDocument, shared by the files that implement it. Arrays
// whose indices are known when a record is added are held as JSON from the
// start; nodes, skins and animations stay plain records until write time,
// because their numbering (or their binary data) is settled only then.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "gltf/document.h"
#include "gltf/json_values.h"

namespace gltf {

struct Node {
  std::string name;
  std::uint32_t parent = kGltfNone;
  std::vector<std::uint32_t> children;  // handles, in the order added
  double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  bool hasMatrix = false;
  bool animated = false;
  // Set by setNodeTrs: written as these parts instead of "matrix".
  bool hasTrs = false;
  GltfTrs trs{};
  std::uint32_t mesh = kGltfNone;
  std::uint32_t camera = kGltfNone;
  std::uint32_t skin = kGltfNone;
};

struct Block {
  GltfBlockKind kind = GltfBlockKind::Nothing;
  std::uint32_t valueCount = 0;
  std::uint32_t byteLength = 0;  // padding included
  std::uint32_t padding = 0;
  std::vector<unsigned char> bytes;  // little-endian values; empty for an image
  std::string imagePath;             // image blocks: the file whose bytes are written
  // On little-endian machines a block may keep the values it was given
  // instead of a copy of their bytes: then one of these holds them.
  std::vector<float> floats;
  std::vector<std::uint32_t> words;

  const unsigned char* data() const {
    if (!floats.empty()) return reinterpret_cast<const unsigned char*>(floats.data());
    if (!words.empty()) return reinterpret_cast<const unsigned char*>(words.data());
    return bytes.data();
  }
  std::size_t size() const {
    if (!floats.empty()) return floats.size() * sizeof(float);
    if (!words.empty()) return words.size() * sizeof(std::uint32_t);
    return bytes.size();
  }
  void keep(std::vector<float>&& values) { floats = std::move(values); }
  void keep(std::vector<std::uint32_t>&& values) { words = std::move(values); }
};

struct ImageFile {
  std::string path;
  std::uint32_t size = 0;
};

struct Curve {
  std::uint32_t node = kGltfNone;
  GltfCurveKind kind = GltfCurveKind::Translation;
  std::vector<double> times;
  std::vector<double> values;  // four per key
  std::uint32_t input = kGltfNone;
  std::uint32_t output = kGltfNone;
};

struct Animation {
  std::string name;
  std::vector<Curve> curves;
  bool finished = false;
};

struct Skin {
  std::string name;
  std::vector<std::uint32_t> joints;  // node handles
  std::vector<double> inverseBind;    // sixteen per joint
  std::uint32_t skeleton = kGltfNone;
  std::uint32_t accessor = kGltfNone;
  bool finished = false;
};

}  // namespace gltf

struct GltfDocument::Impl {
  Impl(GltfDocument& document, const GltfSettings& s);

  void warning(const std::string& text) const;
  void error(const std::string& text) const;

  bool validNode(std::uint32_t node) const { return node < nodes.size(); }
  bool validMesh(std::uint32_t mesh) const { return mesh < meshes.Size(); }
  std::uint32_t appendTo(gltf::Value& array, gltf::Value& record);

  // One payload through block, buffer, view and accessor; kNone when empty.
  std::uint32_t addPayload(GltfBlockKind kind, const void* values, std::uint32_t valueCount, GltfAccessorType type,
                           std::uint32_t componentType, const std::vector<float>& min,
                           const std::vector<float>& max);

  // The same, keeping `values` as the block instead of copying them.
  template <typename T>
  std::uint32_t keepPayload(GltfBlockKind kind, std::vector<T>&& values, GltfAccessorType type,
                            std::uint32_t componentType, const std::vector<float>& min, const std::vector<float>& max);

  void finishAnimation(gltf::Animation& animation);
  void finishSkin(gltf::Skin& skin);
  void finishAll();

  GltfDocument* owner;
  GltfSettings settings;
  gltf::Allocator allocator{gltf::kChunkSize};

  gltf::Value cameras{rapidjson::kArrayType};
  gltf::Value meshes{rapidjson::kArrayType};
  gltf::Value bufferViews{rapidjson::kArrayType};
  gltf::Value accessors{rapidjson::kArrayType};
  gltf::Value materials{rapidjson::kArrayType};
  gltf::Value textures{rapidjson::kArrayType};
  gltf::Value images{rapidjson::kArrayType};
  gltf::Value samplers{rapidjson::kArrayType};

  std::vector<bool> unlitMaterials;  // per material index
  std::uint64_t bufferLength = 0;    // may pass 4 GiB; write() refuses that
  std::vector<gltf::Block> blocks;

  std::vector<gltf::Node> nodes;  // handle 0 is the document root
  std::unordered_map<std::string, std::uint32_t> nodeByName;

  std::vector<gltf::ImageFile> imageFiles;             // per image index
  std::map<std::string, std::uint32_t> imageByPath;    // kNone for a missing file
  std::map<std::string, std::uint32_t> textureByKey;

  std::vector<gltf::Animation> animations;
  std::vector<gltf::Skin> skins;
};
