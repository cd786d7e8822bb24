// The materials phase: one glTF material per polygon tag, made from the
// shader tree under the tag's mask, with its textures, images and samplers;
// then every exported primitive gets the material of its tag.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/export_context.h"
#include "export/geometry/mesh_export.h"
#include "host/shading.h"
#include "texture_record.h"
#include "texture_slots.h"

class MaterialExporter {
 public:
  explicit MaterialExporter(ExportContext& context);

  // The driver: a material for each tag in the order the meshes collected
  // them, then each primitive's "material". Does nothing unless materials are
  // exported.
  void run(const std::vector<PrimitiveTag>& primitives);

  // The document's material for the polygon tag, made on first request;
  // kNone when the document refused it.
  std::uint32_t materialFor(const std::string& tag);

 private:
  struct Material {
    std::uint32_t index;
    GltfMaterialDesc desc;
    MaterialSlots slots;
    // The document's materials for it, one per way meshes place its UV maps
    // among their TEXCOORD sets; the first is `index`.
    std::vector<std::pair<SlotCoords, std::uint32_t>> variants;
    std::string firstMesh;  // the mesh that made the first variant
  };

  void buildMaskIndex();
  std::uint32_t addMaterial(const std::string& tag, Material& material);
  void attachTextures(Material& material, const std::vector<std::pair<std::string, const void*>>& textures);
  // The texture record of the current item (an image-map layer); null when
  // the layer has no clip or the clip no file.
  const TextureRecord* textureFor(const CVxUser_Item& layer);
  std::uint32_t gltfTexture(const std::string& layerName, const TextureRecord& record);
  // The material the primitive's mesh needs: the tag's, or a copy with other "texCoord"s.
  std::uint32_t materialOnMesh(Material& material, const PrimitiveTag& primitive);

  ExportContext& c_;
  CVxShading shading_;
  CVxChannelRead setup_;  // "edit" at time 0, for the "enable" switches and mask tags
  std::unordered_map<std::string, CVxUser_Item> maskIndex_;
  std::unordered_map<std::string, Material> cache_;
  std::unordered_map<std::string, std::unique_ptr<TextureRecord>> textures_;  // by layer name
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> samplers_;
};
