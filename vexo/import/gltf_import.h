// The loader's state while it fills a scene from a parsed glTF model, and
// its steps, one file each: nodes and cameras (gltf_nodes.cpp), meshes
// (gltf_meshes.cpp), materials (gltf_materials.cpp), skins (gltf_skins.cpp)
// and animations (gltf_animation.cpp).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "import/gltf_load_options.h"
#include "import/gltf_loader.h"
#include "import/tiny_gltf_include.h"

namespace vexo {

class MeshData;

// The UV map of a TEXCOORD set: named so that sorting by name, as the exporter
// numbers its TEXCOORD sets, keeps glTF's order (up to set 9).
inline std::string gltfUvMapName(int set) { return set == 0 ? "Texture" : "Texture_" + std::to_string(set); }

class GltfImport {
 public:
  GltfImport(const tinygltf::Model& model, const GltfLoadOptions& options, const std::string& path,
             const std::string& imageFolder, Scene& scene, GltfLoadResult& result);

  bool run();

 private:
  bool fail(const std::string& message);
  void warn(const std::string& message);
  // A fresh ident for an item or transform called `base`.
  std::string freeIdent(const std::string& base);
  TypeCode type(const char* name) const { return scene_.types().find(name); }
  void setChannel(Item& item, const char* channel, Value value, std::string_view action = kSetupAction);
  static std::string nameOr(const std::string& name, const std::string& fallback);

  // Nodes, transforms and cameras.
  bool checkNodeGraph(std::vector<int>& roots);
  bool addNode(int index, Item* parent);
  bool addTransforms(const tinygltf::Node& node, Item& item);
  void setCamera(const tinygltf::Camera& camera, Item& item);
  // Meshes.
  bool fillMesh(const tinygltf::Node& node, Item& item);
  bool addPrimitive(const tinygltf::Primitive& primitive, int meshIndex, MeshData& mesh, bool& added);
  // Materials: the tag of a glTF material, made on first use.
  std::string materialTag(int material);
  bool addMaterials();
  // An image map under `mask` for a material's texture; null (with a warning) when the texture cannot be shown.
  Item* textureLayer(Item& mask, int texture, int texCoord, const tinygltf::ExtensionMap& extensions,
                     const char* effect, int rgba, const std::string& suffix);
  Item* clipForImage(int image);
  Item* locatorFor(int texCoord, int sampler);
  // Skins and animations, once every node has its item.
  bool addSkins();
  bool addAnimations();
  bool addAnimation(const tinygltf::Animation& animation, Item& action, double& start, double& end);

  const tinygltf::Model& model_;
  const GltfLoadOptions& options_;
  const std::string& path_;
  const std::string& imageFolder_;
  Scene& scene_;
  GltfLoadResult& result_;
  double unitScale_ = 1.0;  // metres per file unit, times the global scaling factor

  std::vector<Item*> nodeItems_;        // per glTF node; null for nodes outside the scene
  std::map<int, Item*> meshSources_;    // glTF mesh -> the first unskinned item that holds it
  std::map<int, std::string> tags_;     // glTF material -> material tag
  std::vector<std::string> uvNames_;    // TEXCOORD set -> UV map name
  std::map<int, Item*> clips_;          // glTF image -> image clip
  std::map<std::pair<int, int>, Item*> locators_;  // (TEXCOORD set, sampler) -> texture locator
  // A skinned node's item and where each of its primitives' points start in its mesh.
  struct SkinnedMesh {
    const tinygltf::Node* node;
    Item* item;
    std::vector<std::pair<const tinygltf::Primitive*, std::uint32_t>> parts;
  };
  std::vector<SkinnedMesh> skinned_;
  std::map<std::string, int> warned_;   // warnings given once, by their text
};

}  // namespace vexo
