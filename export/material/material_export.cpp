#include "material_export.h"

#include <algorithm>

#include "material_params.h"
#include "shader_walk.h"

namespace {

IVxItem* itemOf(LayerId layer) { return static_cast<IVxItem*>(const_cast<void*>(layer)); }

// The layer types in the order the classifier tests them.
struct TypeTest {
  VxTypeCode ItemTypes::*code;
  LayerType type;
};
constexpr TypeTest kLayerTypes[] = {
    {&ItemTypes::mask, LayerType::Mask},
    {&ItemTypes::advancedMaterial, LayerType::VexoMaterial},
    {&ItemTypes::unityShader, LayerType::UnityShader},
    {&ItemTypes::unrealShader, LayerType::UnrealShader},
    {&ItemTypes::glTFShader, LayerType::GltfShader},
    {&ItemTypes::imageMap, LayerType::ImageMap},
};

// A channel read by name through one of the saver's readers.
class ItemChannels : public LayerChannels {
 public:
  ItemChannels(const CVxChannelRead& read, const CVxUser_Item& item) : read_(read), item_(item) {}
  bool real(const char* channel, double& value) override {
    const int index = item_.channelIndex(channel);
    return index >= 0 && read_.real(item_, index, value);
  }
  bool integer(const char* channel, std::int32_t& value) override {
    const int index = item_.channelIndex(channel);
    return index >= 0 && read_.integer(item_, index, value);
  }
  std::string text(const char* channel) {
    std::string value;
    const int index = item_.channelIndex(channel);
    if (index < 0 || !read_.text(item_, index, value)) value.clear();
    return value;
  }

 private:
  const CVxChannelRead& read_;
  const CVxUser_Item& item_;
};

// The shader tree through the host: layer items and their children.
class HostLayers : public ShaderLayers {
 public:
  HostLayers(const ItemTypes& types, const CVxChannelRead& setup) : types_(types), setup_(setup) {}

  LayerRecord classify(LayerId layer) override {
    const CVxUser_Item item(itemOf(layer));
    LayerFacts facts;
    if (!item.test()) return classifyLayer(facts);
    facts.layer = layer;
    facts.name = item.name();
    ItemChannels channels(setup_, item);
    std::int32_t enable = 0;
    channels.integer("enable", enable);
    facts.enabled = enable > 0;
    for (const TypeTest& test : kLayerTypes) {
      if (item.isA(types_.*test.code)) {
        facts.type = test.type;
        break;
      }
    }
    if (facts.type == LayerType::ImageMap) facts.effect = channels.text("effect");
    return classifyLayer(facts);
  }
  unsigned childCount(LayerId layer) override { return CVxUser_Item(itemOf(layer)).childCount(); }
  LayerId child(LayerId layer, unsigned index) override {
    return CVxUser_Item(itemOf(layer)).child(index).raw();
  }

 private:
  const ItemTypes& types_;
  const CVxChannelRead& setup_;
};

}  // namespace

MaterialExporter::MaterialExporter(ExportContext& context)
    : c_(context), shading_(context.scene), setup_(context.scene.channelRead("edit", 0.0)) {}

void MaterialExporter::run(const std::vector<PrimitiveTag>& primitives) {
  if (c_.options.materials == 0 || !c_.document) return;
  c_.log.info("Creating materials");
  buildMaskIndex();
  for (const PrimitiveTag& primitive : primitives) {
    if (materialFor(primitive.tag) == GltfDocument::kNone)
      c_.log.error("Failed to create material:%s", primitive.tag.c_str());
  }

  for (const PrimitiveTag& primitive : primitives) {
    const auto found = cache_.find(primitive.tag);
    if (found == cache_.end()) continue;
    c_.document->setPrimitiveMaterial(primitive.mesh, primitive.primitive, materialOnMesh(found->second, primitive));
  }
}

void MaterialExporter::buildMaskIndex() {
  // A tag belongs to the first enabled mask in scene order that names it as
  // a material tag, the rule by which the host shows it.
  const unsigned count = c_.scene.itemCount(c_.types.mask);
  for (unsigned i = 0; i < count; ++i) {
    const CVxUser_Item mask = c_.scene.item(c_.types.mask, i);
    ItemChannels channels(setup_, mask);
    std::int32_t enable = 0;
    channels.integer("enable", enable);
    if (enable <= 0) continue;
    const std::string ptyp = channels.text("ptyp");
    if (!ptyp.empty() && ptyp != "Material") continue;
    const std::string ptag = channels.text("ptag");
    if (!ptag.empty()) maskIndex_.emplace(ptag, mask);
  }
}

std::uint32_t MaterialExporter::materialFor(const std::string& tag) {
  const auto cached = cache_.find(tag);
  if (cached != cache_.end()) return cached->second.index;

  Material material{GltfDocument::kNone, GltfMaterialDesc(), MaterialSlots(), {}, std::string()};
  material.desc.name = tag;
  const auto mask = maskIndex_.find(tag);
  if (mask == maskIndex_.end()) {
    if (tag != "Default") c_.log.info("Failed to find the poly mask tag:%s, using default material", tag.c_str());
    return addMaterial(tag, material);
  }

  const CVxUser_Item& maskItem = mask->second;
  ItemChannels maskChannels(setup_, maskItem);
  c_.log.info("Found mask:%s ptag:%s ptype:%s", tag.c_str(), maskChannels.text("ptag").c_str(),
              maskChannels.text("ptyp").c_str());

  HostLayers layers(c_.types, setup_);
  const MaskWalk walk = walkMask(layers, maskItem.raw(), c_.log);
  if (walk.gltfMaterials.empty()) {
    c_.log.warning("    Poly tag %s does not have material layer effect", tag.c_str());
  } else {
    const CVxUser_Item gltfLayer(itemOf(walk.gltfMaterials.front()));
    c_.currentItem = gltfLayer;
    ItemChannels channels(c_.edit, gltfLayer);
    readGltfMaterialLayer(material.desc, channels, c_.log);
    if (walk.vexoMaterial) {
      const CVxUser_Item vexoLayer(itemOf(walk.vexoMaterial));
      c_.currentItem = vexoLayer;
      ItemChannels vexoChannels(c_.edit, vexoLayer);
      readVexoMaterialLayer(material.desc, vexoChannels);
    }
    if (walk.gltfMaterials.size() > 1)
      c_.log.warning("    Multiple material layers detected within poly tag %s", tag.c_str());
  }
  const std::uint32_t index = addMaterial(tag, material);
  if (index == GltfDocument::kNone) return index;

  attachTextures(cache_.at(tag), walk.textures);
  return index;
}

std::uint32_t MaterialExporter::addMaterial(const std::string& tag, Material& material) {
  material.index = c_.document->addMaterial(material.desc);
  if (material.index == GltfDocument::kNone) return material.index;
  return cache_.emplace(tag, std::move(material)).first->second.index;
}

void MaterialExporter::attachTextures(Material& material,
                                      const std::vector<std::pair<std::string, const void*>>& textures) {
  for (const auto& [effect, layer] : textures) {
    const CVxUser_Item item(itemOf(layer));
    c_.currentItem = item;
    const TextureRecord* record = textureFor(item);
    if (!record) continue;
    const std::string layerName = item.name();
    SlotTexture texture;
    texture.index = gltfTexture(layerName, *record);
    if (texture.index == GltfDocument::kNone) continue;
    texture.imageFile = record->imageFile;
    texture.uvMap = record->uvMap;
    Swizzle swizzle;
    ItemChannels channels(c_.edit, item);
    channels.integer("swizzling", swizzle.on);
    if (swizzle.on != 0) channels.integer("rgba", swizzle.rgba);
    attachTexture(material.slots, effect, layerName, texture, swizzle, c_.log);
  }
}

const TextureRecord* MaterialExporter::textureFor(const CVxUser_Item& layer) {
  const std::string layerName = c_.currentItem.name();
  const auto cached = textures_.find(layerName);
  if (cached != textures_.end()) return cached->second.get();

  const CVxUser_Item clip = shading_.clip(layer);
  const std::string file = shading_.clipFile(clip);
  if (file.empty()) return nullptr;

  auto record = std::make_unique<TextureRecord>();
  const CVxUser_Item locator = shading_.textureLocator(layer);
  std::string uvMap;
  std::int32_t projection = 0;
  ItemChannels channels(c_.edit, locator);
  if (locator.test()) {
    uvMap = channels.text("uvMap");
    channels.integer("projType", projection);
  }
  const std::string locatorName = locator.name();
  c_.log.info("      imageMap:%s file:%s uvmap:%s projMode:%d", layerName.c_str(), file.c_str(), uvMap.c_str(),
              projection);
  c_.log.info("      Creating texture:%s texLoc:%s", layerName.c_str(), locatorName.c_str());

  record->name = textureName(layerName);
  record->imageFile = file;
  CVxImageInfo info;
  shading_.imageInfo(clip, info);
  record->format = info.format;
  if (projection == kProjectionUvMap) {
    record->uvMap = uvMap;
  } else {
    c_.log.warning(
        "Creating texture:%s failed! Textures need to have texture locators and 'UVMap' projection type.",
        layerName.c_str());
  }
  if (locator.test()) {
    channels.integer("tileU", record->tileU);
    channels.integer("tileV", record->tileV);
    channels.real("wrapU", record->wrapU);
    channels.real("wrapV", record->wrapV);
    c_.log.info("       tileU:%d tileV:%d", static_cast<int>(record->wrapU), static_cast<int>(record->wrapV));
    if (record->wrapU != 1.0 || record->wrapV != 1.0) {
      c_.log.warning("      Texture:%s repeats %g x %g times; the file keeps one repeat across the UV range",
                     layerName.c_str(), record->wrapU, record->wrapV);
    }
  }
  return textures_.emplace(layerName, std::move(record)).first->second.get();
}

std::uint32_t MaterialExporter::gltfTexture(const std::string& layerName, const TextureRecord& record) {
  const std::uint32_t image = c_.document->addImage(record.imageFile, static_cast<std::uint32_t>(record.format));
  if (image == GltfDocument::kNone) return GltfDocument::kNone;
  const std::pair<std::uint32_t, std::uint32_t> wrap{wrapMode(record.tileU), wrapMode(record.tileV)};
  auto sampler = samplers_.find(wrap);
  if (sampler == samplers_.end()) {
    sampler = samplers_.emplace(wrap, c_.document->addSampler(wrap.first, wrap.second)).first;
  }
  return c_.document->addTexture(layerName, record.name, sampler->second, image);
}

std::uint32_t MaterialExporter::materialOnMesh(Material& material, const PrimitiveTag& primitive) {
  static const std::vector<std::string> kNoUvSets;
  const std::vector<std::string>& uvSets = primitive.uvMaps ? *primitive.uvMaps : kNoUvSets;
  const char* mesh = primitive.meshName.c_str();
  const char* tag = material.desc.name.c_str();
  std::vector<std::string> missing;
  const SlotCoords coords = slotTexCoords(material.slots, uvSets, missing);
  const bool dropped = std::find(coords.begin(), coords.end(), kSlotNoUvSet) != coords.end();
  if (dropped) {
    c_.log.warning("      Mesh:%s has no UV map for the textures of material:%s; they are left out on it", mesh, tag);
  } else {
    for (const std::string& uvMap : missing)
      c_.log.warning("      Mesh:%s has no UV map %s for material:%s; TEXCOORD_0 is used", mesh, uvMap.c_str(), tag);
  }
  for (const auto& [known, index] : material.variants) {
    if (known == coords) return index;
  }

  GltfMaterialDesc desc = material.desc;
  applySlots(desc, material.slots, coords);
  std::uint32_t index = material.index;
  if (material.variants.empty()) {
    material.firstMesh = primitive.meshName;
    c_.document->setMaterial(index, desc);
  } else {
    if (!dropped)
      c_.log.warning(
        "      Mesh:%s holds the UV maps of material:%s at other TEXCOORD sets than mesh:%s; it gets a copy of the "
        "material",
        mesh, tag, material.firstMesh.c_str());
    index = c_.document->addMaterial(desc);
    if (index == GltfDocument::kNone) return material.index;
  }
  material.variants.emplace_back(coords, index);
  return index;
}
