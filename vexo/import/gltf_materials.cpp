// glTF materials as the host's shader tree: under one render item, a mask per
// material tag holding (bottom to top) a material for transparency and
// double-sidedness when needed, a glTF material layer with the PBR numbers,
// and an image map per texture, each with its image clip and a texture
// locator that projects it by the UV map of its TEXCOORD set.
#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>

#include "engine/item.h"
#include "import/gltf_import.h"
#include "mesh/mesh_data.h"

namespace vexo {
namespace {

namespace fs = std::filesystem;


// glTF wrap modes as the locator's tile modes: 0 clamps, 1 repeats, 2 mirrors.
int tileMode(int wrap) {
  switch (wrap) {
    case TINYGLTF_TEXTURE_WRAP_CLAMP_TO_EDGE: return 0;
    case TINYGLTF_TEXTURE_WRAP_MIRRORED_REPEAT: return 2;
    default: return 1;
  }
}

std::string percentDecoded(const std::string& uri) {
  std::string out;
  for (std::size_t i = 0; i < uri.size(); ++i) {
    if (uri[i] == '%' && i + 2 < uri.size() && std::isxdigit(static_cast<unsigned char>(uri[i + 1])) &&
        std::isxdigit(static_cast<unsigned char>(uri[i + 2]))) {
      out += static_cast<char>(std::stoi(uri.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      out += uri[i];
    }
  }
  return out;
}

// The file extension for an image's bytes, from its MIME type or its signature.
std::string imageExtension(const tinygltf::Image& image) {
  const std::vector<unsigned char>& b = image.image;
  if (image.mimeType == "image/png" || (b.size() > 4 && b[0] == 0x89 && b[1] == 'P' && b[2] == 'N' && b[3] == 'G'))
    return ".png";
  if (image.mimeType == "image/jpeg" || (b.size() > 3 && b[0] == 0xFF && b[1] == 0xD8 && b[2] == 0xFF)) return ".jpg";
  return ".bin";
}

// A file name made of the image's name: path separators and control characters become "_".
std::string safeFileName(const std::string& name) {
  std::string out;
  for (char c : name) out += (c == '/' || c == '\\' || static_cast<unsigned char>(c) < 32) ? '_' : c;
  if (out.empty() || out == "." || out == "..") out = "image";
  return out;
}

}  // namespace

std::string GltfImport::materialTag(int material) {
  if (material < 0 || static_cast<std::size_t>(material) >= model_.materials.size()) {
    if (material >= 0) warn("a primitive names material " + std::to_string(material) + ", which does not exist; it gets the default material");
    return std::string(kDefaultTag);
  }
  if (auto found = tags_.find(material); found != tags_.end()) return found->second;
  std::string tag = nameOr(model_.materials[static_cast<std::size_t>(material)].name, "Material" + std::to_string(material));
  // Tags name materials: two materials of one name, or one called like the default, need their own.
  auto taken = [&](const std::string& candidate) {
    if (candidate == kDefaultTag) return true;
    for (const auto& entry : tags_)
      if (entry.second == candidate) return true;
    return false;
  };
  if (taken(tag)) tag = uniqueIdent(tag, taken);
  tags_[material] = tag;
  return tag;
}

bool GltfImport::addMaterials() {
  if (tags_.empty()) return true;
  Item* render = scene_.addItem(type("polyRender"), "Render", freeIdent("Render"));
  if (!render) return fail("cannot add the shader tree");
  for (const auto& [index, tag] : tags_) {
    const tinygltf::Material& material = model_.materials[static_cast<std::size_t>(index)];
    Item* mask = scene_.addItem(type("mask"), tag, freeIdent(tag), render);
    if (!mask) return fail("cannot add the material " + tag);
    setChannel(*mask, "ptag", tag);
    setChannel(*mask, "ptyp", std::string("Material"));

    const tinygltf::PbrMetallicRoughness& pbr = material.pbrMetallicRoughness;
    const double alpha = pbr.baseColorFactor.size() == 4 ? pbr.baseColorFactor[3] : 1.0;
    const bool blend = material.alphaMode == "BLEND";
    if (material.alphaMode == "MASK") warn("material " + tag + ": alpha masking is not kept; the material is opaque");
    if (blend || material.doubleSided) {
      Item* surface = scene_.addItem(type("advancedMaterial"), "Material", {}, mask);
      if (!surface) return fail("cannot add the material " + tag);
      setChannel(*surface, "dissAmt", blend ? 1.0 - alpha : 0.0);
      setChannel(*surface, "dblSided", material.doubleSided ? 1 : 0);
    }
    Item* shader = scene_.addItem(type("glTFShader"), "glTF Material", {}, mask);
    if (!shader) return fail("cannot add the material " + tag);
    if (pbr.baseColorFactor.size() == 4) {
      setChannel(*shader, "baseColor.R", pbr.baseColorFactor[0]);
      setChannel(*shader, "baseColor.G", pbr.baseColorFactor[1]);
      setChannel(*shader, "baseColor.B", pbr.baseColorFactor[2]);
    }
    setChannel(*shader, "metallic", pbr.metallicFactor);
    setChannel(*shader, "roughness", pbr.roughnessFactor);
    if (material.emissiveFactor.size() == 3) {
      setChannel(*shader, "emissive.R", material.emissiveFactor[0]);
      setChannel(*shader, "emissive.G", material.emissiveFactor[1]);
      setChannel(*shader, "emissive.B", material.emissiveFactor[2]);
    }
    double emissiveLevel = 1.0;
    if (auto found = material.extensions.find("KHR_materials_emissive_strength"); found != material.extensions.end())
      if (found->second.Has("emissiveStrength")) emissiveLevel = found->second.Get("emissiveStrength").GetNumberAsDouble();
    setChannel(*shader, "emissivelevel", emissiveLevel);
    setChannel(*shader, "normalscale", material.normalTexture.scale);
    setChannel(*shader, "aoscale", material.occlusionTexture.strength);
    if (material.extensions.count("KHR_materials_unlit")) setChannel(*shader, "shadeModel", 1);

    // Image maps above the material layer; "rgba" picks the channel glTF reads.
    struct Slot {
      int texture, texCoord;
      const tinygltf::ExtensionMap* extensions;
      const char* effect;
      int rgba;
      const char* suffix;
    };
    const Slot slots[] = {
        {pbr.baseColorTexture.index, pbr.baseColorTexture.texCoord, &pbr.baseColorTexture.extensions, "baseColorGLTF", 0, ""},
        {pbr.metallicRoughnessTexture.index, pbr.metallicRoughnessTexture.texCoord,
         &pbr.metallicRoughnessTexture.extensions, "roughnessGLTF", 4, " Roughness"},
        {pbr.metallicRoughnessTexture.index, pbr.metallicRoughnessTexture.texCoord,
         &pbr.metallicRoughnessTexture.extensions, "metallicGLTF", 5, " Metallic"},
        {material.occlusionTexture.index, material.occlusionTexture.texCoord, &material.occlusionTexture.extensions,
         "aoGLTF", 3, " Occlusion"},
        {material.normalTexture.index, material.normalTexture.texCoord, &material.normalTexture.extensions,
         "normalGLTF", -1, ""},
        {material.emissiveTexture.index, material.emissiveTexture.texCoord, &material.emissiveTexture.extensions,
         "emisGLTF", -1, ""},
    };
    for (const Slot& slot : slots) {
      if (slot.texture < 0) continue;
      textureLayer(*mask, slot.texture, slot.texCoord, *slot.extensions, slot.effect, slot.rgba, slot.suffix);
      if (!result_.error.empty()) return false;
    }
  }
  return true;
}

Item* GltfImport::textureLayer(Item& mask, int texture, int texCoord, const tinygltf::ExtensionMap& extensions,
                               const char* effect, int rgba, const std::string& suffix) {
  if (static_cast<std::size_t>(texture) >= model_.textures.size()) {
    warn("material " + mask.name() + " names texture " + std::to_string(texture) + ", which does not exist");
    return nullptr;
  }
  if (extensions.count("KHR_texture_transform"))
    warn("material " + mask.name() + ": texture transforms (KHR_texture_transform) are left out");
  const tinygltf::Texture& source = model_.textures[static_cast<std::size_t>(texture)];
  if (source.source < 0 || static_cast<std::size_t>(source.source) >= model_.images.size()) {
    warn("texture " + std::to_string(texture) + " has no image it can show; it is left out");
    return nullptr;
  }
  Item* clip = clipForImage(source.source);
  if (!clip) return nullptr;
  Item* locator = locatorFor(texCoord, source.sampler);
  if (!locator) return nullptr;
  // One layer name per texture (and channel): the exporter makes one glTF texture per name.
  const std::string base = nameOr(source.name, clip->name());
  const std::string name = base + suffix + " (Image)";
  Item* layer = scene_.addItem(type("imageMap"), name, {}, &mask);
  if (!layer) {
    fail("cannot add the image map " + name);
    return nullptr;
  }
  setChannel(*layer, "effect", std::string(effect));
  if (rgba >= 0) {
    setChannel(*layer, "swizzling", 1);
    setChannel(*layer, "rgba", rgba);
  }
  scene_.shading().setLayerClip(*layer, *clip);
  scene_.shading().setLayerLocator(*layer, *locator);
  return layer;
}

// Images in files of their own are used where they lie; images inside the
// glTF file are written into the image folder, one file each.
Item* GltfImport::clipForImage(int index) {
  if (auto found = clips_.find(index); found != clips_.end()) return found->second;
  const tinygltf::Image& image = model_.images[static_cast<std::size_t>(index)];
  fs::path file;
  if (!image.uri.empty() && image.uri.compare(0, 5, "data:") != 0) {
    file = fs::u8path(path_).parent_path() / fs::u8path(percentDecoded(image.uri));
    std::error_code error;
    const fs::path absolute = fs::absolute(file, error);
    if (!error) file = absolute;
    file = file.lexically_normal();
  } else if (!image.image.empty()) {
    std::string stem = safeFileName(nameOr(image.name, "image" + std::to_string(index)));
    std::string extension = imageExtension(image);
    if (fs::u8path(stem).extension().u8string() == extension) stem = fs::u8path(stem).stem().u8string();
    file = fs::u8path(imageFolder_) / fs::u8path(stem + extension);
    for (int n = 2; fs::exists(file); ++n) file = fs::u8path(imageFolder_) / fs::u8path(stem + "_" + std::to_string(n) + extension);
    std::ofstream out(file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(image.image.data()), static_cast<std::streamsize>(image.image.size()));
    if (!out.flush()) {
      fail("cannot write image " + std::to_string(index) + " to " + file.u8string());
      return nullptr;
    }
  } else {
    warn("image " + std::to_string(index) + " has no data; its textures are left out");
    clips_[index] = nullptr;
    return nullptr;
  }
  const std::string name = file.filename().u8string();
  Item* clip = scene_.addItem(type("imageClip"), name, freeIdent(name));
  if (!clip) {
    fail("cannot add the image clip " + name);
    return nullptr;
  }
  scene_.shading().setClipFile(*clip, file.u8string());
  clips_[index] = clip;
  return clip;
}

Item* GltfImport::locatorFor(int texCoord, int sampler) {
  const std::pair<int, int> key{texCoord, sampler};
  if (auto found = locators_.find(key); found != locators_.end()) return found->second;
  int wrapS = TINYGLTF_TEXTURE_WRAP_REPEAT, wrapT = TINYGLTF_TEXTURE_WRAP_REPEAT;
  if (sampler >= 0 && static_cast<std::size_t>(sampler) < model_.samplers.size()) {
    wrapS = model_.samplers[static_cast<std::size_t>(sampler)].wrapS;
    wrapT = model_.samplers[static_cast<std::size_t>(sampler)].wrapT;
  }
  const std::string name = "Texture Locator";
  Item* locator = scene_.addItem(type("txtrLocator"), name, freeIdent(name));
  if (!locator) {
    fail("cannot add a texture locator");
    return nullptr;
  }
  setChannel(*locator, "uvMap", gltfUvMapName(texCoord));
  setChannel(*locator, "projType", 6);
  setChannel(*locator, "tileU", tileMode(wrapS));
  setChannel(*locator, "tileV", tileMode(wrapT));
  locators_[key] = locator;
  return locator;
}

}  // namespace vexo
