// Scene-file fields of the shader tree: a layer's layers, an image clip's
// file, and the clip and texture locator of an image map.
#include <filesystem>
#include <system_error>

#include "scenefile/scene_reader.h"

namespace vexo {
namespace {

using Kind = JsonNode::Kind;

const KeyList kLayerKeys = {"layers"};
const KeyList kImageMapKeys = {"layers", "clip", "image", "locator"};
const KeyList kClipKeys = {"file"};
const KeyList kNoKeys = {};

struct ShadingTypes {
  TypeCode layer, imageMap, clip, textureLocator;
};

ShadingTypes lookUp(const TypeRegistry& types) {
  return {types.find("textureLayer"), types.find("imageMap"), types.find("imageClip"), types.find("txtrLocator")};
}

// Asked for every item read: the built-in registry's codes are looked up once.
ShadingTypes shadingTypes(const TypeRegistry& types) {
  static const ShadingTypes builtin = lookUp(TypeRegistry::builtin());
  return &types == &TypeRegistry::builtin() ? builtin : lookUp(types);
}

}  // namespace

const KeyList& shadingItemKeys(const TypeRegistry& types, TypeCode type) {
  const ShadingTypes codes = shadingTypes(types);
  if (types.derives(type, codes.imageMap)) return kImageMapKeys;
  if (types.derives(type, codes.layer)) return kLayerKeys;
  if (types.derives(type, codes.clip)) return kClipKeys;
  return kNoKeys;
}

bool SceneReader::readShadingFields(const JsonNode& node, Item& item) {
  const ShadingTypes codes = shadingTypes(scene_.types());
  const TypeRegistry& types = scene_.types();
  if (types.derives(item.typeCode(), codes.layer)) {
    for (const JsonMember& m : node.members)
      if (m.key == "children")
        return fail(m.keyPos, "a shader-tree layer holds its layers under \"layers\", top first, not \"children\"");
    if (const JsonNode* layers = member(node, "layers"); layers && !readLayers(*layers, item)) return false;
  }
  if (types.derives(item.typeCode(), codes.clip)) {
    if (const JsonNode* file = member(node, "file"); file && !readClipFile(*file, item)) return false;
  }
  if (types.derives(item.typeCode(), codes.imageMap)) {
    const JsonNode* clip = member(node, "clip");
    const JsonNode* image = member(node, "image");
    const JsonNode* locator = member(node, "locator");
    if (clip && !expect(*clip, Kind::String, "\"clip\"")) return false;
    if (image && !expect(*image, Kind::String, "\"image\"")) return false;
    if (locator && !expect(*locator, Kind::String, "\"locator\"")) return false;
    if (clip && image)
      return fail(image->pos, "\"image\" cannot be given beside \"clip\": an image map shows one image clip");
    if (image && image->text.empty()) return fail(image->pos, "the image file name is empty");
    if (clip || image || locator) shadingRefs_.push_back({&item, clip, image, locator});
  }
  return true;
}

// The file lists the top layer first; child index 0 is the bottom of the stack.
bool SceneReader::readLayers(const JsonNode& layers, Item& parent) {
  if (!expect(layers, Kind::Array, "\"layers\"")) return false;
  const TypeCode layerType = shadingTypes(scene_.types()).layer;
  for (const JsonNode& node : layers.elements) {
    if (node.kind == Kind::Object) {
      const JsonNode* type = member(node, "type");
      const TypeCode code = type && type->kind == Kind::String ? scene_.types().find(type->text) : kNoType;
      if (code != kNoType && !scene_.types().derives(code, layerType))
        return fail(type->pos, inQuotes(type->text) +
                                   " is no shader-tree layer: \"layers\" holds items whose type derives from \"textureLayer\"");
    }
    if (!readItem(node, &parent)) return false;
  }
  scene_.reverseChildren(parent);
  return true;
}

bool SceneReader::readClipFile(const JsonNode& file, Item& clip) {
  if (!expect(file, Kind::String, "\"file\"")) return false;
  if (file.text.empty()) return fail(file.pos, "the image file name is empty");
  scene_.shading().setClipFile(clip, fullPath(file.text));
  return true;
}

// Relative to the scene file's folder, made absolute: exporters copy the file from there.
std::string SceneReader::fullPath(const std::string& path) const {
  namespace fs = std::filesystem;
  fs::path joined = fs::path(fileName_).parent_path() / fs::u8path(path);
  std::error_code error;
  fs::path absolute = fs::absolute(joined, error);
  return (error ? joined : absolute).lexically_normal().u8string();
}

// One clip per file: image maps naming the same file share the clip, declared or made here.
Item* SceneReader::clipForImage(const JsonNode& image) {
  const std::string path = fullPath(image.text);
  const TypeCode clipType = shadingTypes(scene_.types()).clip;
  for (Item* clip : scene_.itemsOfType(clipType))
    if (const std::string* file = scene_.shading().clipFile(*clip); file && *file == path) return clip;
  std::string name = std::filesystem::u8path(path).filename().u8string();
  if (name.empty()) name = image.text;
  Item* clip = scene_.addItem(clipType, name, freeIdent(name));
  if (clip) scene_.shading().setClipFile(*clip, path);
  return clip;
}

bool SceneReader::resolveShadingRefs() {
  const ShadingTypes codes = shadingTypes(scene_.types());
  // Clips for "image" first, so that a "clip" may name one by its file name.
  for (const ShadingRefs& refs : shadingRefs_) {
    if (!refs.image) continue;
    Item* clip = clipForImage(*refs.image);
    if (!clip) return fail(refs.image->pos, "cannot make a clip for " + inQuotes(refs.image->text));
    scene_.shading().setLayerClip(*refs.layer, *clip);
  }
  for (const ShadingRefs& refs : shadingRefs_) {
    std::string problem;
    if (refs.clip) {
      Item* clip = findItemByRef(scene_, refs.clip->text, &problem);
      if (!clip) return fail(refs.clip->pos, "cannot find the image clip: " + problem);
      if (!scene_.types().derives(clip->typeCode(), codes.clip))
        return fail(refs.clip->pos, "the clip " + inQuotes(refs.clip->text) + " is a " + inQuotes(clip->type().name) +
                                        "; an image map shows an \"imageClip\"");
      scene_.shading().setLayerClip(*refs.layer, *clip);
    }
    if (refs.locator) {
      Item* locator = findItemByRef(scene_, refs.locator->text, &problem);
      if (!locator) return fail(refs.locator->pos, "cannot find the texture locator: " + problem);
      if (!scene_.types().derives(locator->typeCode(), codes.textureLocator))
        return fail(refs.locator->pos, "the locator " + inQuotes(refs.locator->text) + " is a " +
                                           inQuotes(locator->type().name) +
                                           "; an image map is projected by a \"txtrLocator\"");
      scene_.shading().setLayerLocator(*refs.layer, *locator);
    }
  }
  return true;
}

}  // namespace vexo
