#include "engine/item_types.h"

#include <stdexcept>

namespace vexo {
namespace {

constexpr ValueType kInt = ValueType::Integer;
constexpr ValueType kFloat = ValueType::Float;
constexpr ValueType kText = ValueType::Text;
constexpr ValueType kMatrix = ValueType::Matrix;

// The built-in types. Locators are the items with a place in the scene
// hierarchy; shader-tree layers share "textureLayer"; the transform items
// ("scale", "rotation", ...) have no common base, so none tests as another.
const std::vector<TypeSpec>& builtinTable() {
  static const std::vector<TypeSpec> table = {
      {"scene", nullptr, {{"fps", kFloat, 24.0, nullptr},
                          {"currentS", kFloat, 0.0, nullptr},
                          {"currentE", kFloat, 5.0, nullptr}}},
      // "visible" 0 is the default state, which shows the item. The matrix
      // channels are computed from the transform stack whenever they are read.
      {"locator", nullptr, {{"visible", kInt, 0.0, nullptr},
                            {"wposMatrix", kMatrix, 0.0, nullptr},
                            {"wrotMatrix", kMatrix, 0.0, nullptr},
                            {"wsclMatrix", kMatrix, 0.0, nullptr},
                            {"worldMatrix", kMatrix, 0.0, nullptr},
                            {"localMatrix", kMatrix, 0.0, nullptr},
                            {"parentMatrix", kMatrix, 0.0, nullptr}}},
      {"groupLocator", "locator", {}},
      // Lengths in metres: a 50 mm lens on a 36 x 24 mm film back.
      {"camera", "locator", {{"focalLen", kFloat, 0.05, nullptr},
                             {"apertureX", kFloat, 0.036, nullptr},
                             {"apertureY", kFloat, 0.024, nullptr},
                             {"clipNear", kFloat, 0.01, nullptr},
                             {"clipFar", kFloat, 1000.0, nullptr}}},
      {"light", "locator", {{"radiance", kFloat, 3.0, nullptr},
                            {"color.R", kFloat, 1.0, nullptr},
                            {"color.G", kFloat, 1.0, nullptr},
                            {"color.B", kFloat, 1.0, nullptr}}},
      {"sunLight", "light", {}},
      {"pointLight", "light", {}},
      // "cone": the angle in radians between the axis and the edge of the cone.
      {"spotLight", "light", {{"cone", kFloat, 0.5235987755982988, nullptr}}},
      {"areaLight", "light", {{"width", kFloat, 1.0, nullptr},
                              {"height", kFloat, 1.0, nullptr}}},
      {"mesh", "locator", {}},
      {"meshInst", "locator", {}},
      {"triSurf", "locator", {}},
      // "projType" 6 projects by the UV map "uvMap"; 0 to 5 are planar,
      // cylindrical, spherical, cubic, front and light-probe. "tileU"/"tileV":
      // 0 clamps at the edge, 1 repeats, 2 mirrors; "wrapU"/"wrapV" count repeats.
      {"txtrLocator", "locator", {{"uvMap", kText, 0.0, "Texture"},
                                  {"projType", kInt, 6.0, nullptr},
                                  {"tileU", kInt, 1.0, nullptr},
                                  {"tileV", kInt, 1.0, nullptr},
                                  {"wrapU", kFloat, 1.0, nullptr},
                                  {"wrapV", kFloat, 1.0, nullptr}}},
      {"replicator", "locator", {}},
      {"textureLayer", nullptr, {{"enable", kInt, 1.0, nullptr}}},
      {"polyRender", "textureLayer", {{"resX", kInt, 1920.0, nullptr},
                                      {"resY", kInt, 1080.0, nullptr}}},
      {"mask", "textureLayer", {{"ptag", kText, 0.0, ""},
                                {"ptyp", kText, 0.0, "Material"}}},
      // "dissAmt" 0 is opaque, 1 fully dissolved.
      {"advancedMaterial", "textureLayer", {{"diffCol.R", kFloat, 0.8, nullptr},
                                            {"diffCol.G", kFloat, 0.8, nullptr},
                                            {"diffCol.B", kFloat, 0.8, nullptr},
                                            {"diffAmt", kFloat, 0.8, nullptr},
                                            {"dissAmt", kFloat, 0.0, nullptr},
                                            {"dblSided", kInt, 0.0, nullptr}}},
      // "rgba", the channel "swizzling" takes the image from: 0 RGB, 1 RGBA,
      // 2 alpha, 3 red, 4 green, 5 blue, 6 luminance.
      {"imageMap", "textureLayer", {{"effect", kText, 0.0, "diffColor"},
                                    {"swizzling", kInt, 0.0, nullptr},
                                    {"rgba", kInt, 0.0, nullptr}}},
      {"lightMaterial", "textureLayer", {}},
      {"unityShader", "textureLayer", {}},
      {"unrealShader", "textureLayer", {}},
      // An untouched glTF material layer is glTF's default material; "shadeModel" 1 is unlit.
      {"glTFShader", "textureLayer", {{"baseColor.R", kFloat, 1.0, nullptr},
                                      {"baseColor.G", kFloat, 1.0, nullptr},
                                      {"baseColor.B", kFloat, 1.0, nullptr},
                                      {"shadeModel", kInt, 0.0, nullptr},
                                      {"metallic", kFloat, 1.0, nullptr},
                                      {"roughness", kFloat, 1.0, nullptr},
                                      {"emissive.R", kFloat, 0.0, nullptr},
                                      {"emissive.G", kFloat, 0.0, nullptr},
                                      {"emissive.B", kFloat, 0.0, nullptr},
                                      {"emissivelevel", kFloat, 1.0, nullptr},
                                      {"normalscale", kFloat, 1.0, nullptr},
                                      {"aoscale", kFloat, 1.0, nullptr}}},
      // An image file's picture; the scene file gives its path (not a channel).
      {"imageClip", nullptr, {}},
      {"morphDeform", nullptr, {{"enable", kInt, 1.0, nullptr}}},
      {"deformGroup", nullptr, {}},
      // Binds a joint to a mesh; "type" 1: through the mesh's weight map "name".
      {"influence", nullptr, {{"type", kInt, 1.0, nullptr}, {"name", kText, 0.0, ""}}},
      // Transform items: angles in radians; "order" numbers the rotation
      // orders XYZ, XZY, YXZ, YZX, ZXY, ZYX from 0.
      {"scale", nullptr, {{"scl.X", kFloat, 1.0, nullptr},
                          {"scl.Y", kFloat, 1.0, nullptr},
                          {"scl.Z", kFloat, 1.0, nullptr}}},
      {"rotation", nullptr, {{"rot.X", kFloat, 0.0, nullptr},
                             {"rot.Y", kFloat, 0.0, nullptr},
                             {"rot.Z", kFloat, 0.0, nullptr},
                             {"order", kInt, 0.0, nullptr}}},
      {"translation", nullptr, {{"pos.X", kFloat, 0.0, nullptr},
                                {"pos.Y", kFloat, 0.0, nullptr},
                                {"pos.Z", kFloat, 0.0, nullptr}}},
      // Scale, then rotation, then translation in one item.
      {"transform", nullptr, {{"pos.X", kFloat, 0.0, nullptr},
                              {"pos.Y", kFloat, 0.0, nullptr},
                              {"pos.Z", kFloat, 0.0, nullptr},
                              {"rot.X", kFloat, 0.0, nullptr},
                              {"rot.Y", kFloat, 0.0, nullptr},
                              {"rot.Z", kFloat, 0.0, nullptr},
                              {"order", kInt, 0.0, nullptr},
                              {"scl.X", kFloat, 1.0, nullptr},
                              {"scl.Y", kFloat, 1.0, nullptr},
                              {"scl.Z", kFloat, 1.0, nullptr}}},
      // x += XY * y + XZ * z, y += YZ * z.
      {"shear", nullptr, {{"shr.XY", kFloat, 0.0, nullptr},
                          {"shr.XZ", kFloat, 0.0, nullptr},
                          {"shr.YZ", kFloat, 0.0, nullptr}}},
      {"ikFullBody", nullptr, {}},
      // "active": the action the actor plays (at most one per actor);
      // "exportTag": the text "item.exportTags" puts in front of the action's name.
      {"actionclip", nullptr, {{"active", kInt, 0.0, nullptr},
                               {"enabled", kInt, 1.0, nullptr},
                               {"exportTag", kText, 0.0, ""}}},
      {"group", nullptr, {}},
      {"actor", "group", {}},
  };
  return table;
}

Value initialValue(const ChannelSpec& entry) {
  switch (entry.type) {
    case ValueType::Integer:
      return static_cast<std::int32_t>(entry.number);
    case ValueType::Float:
      return entry.number;
    case ValueType::Text:
      return std::string(entry.text ? entry.text : "");
    case ValueType::Matrix:
      break;
  }
  return identityMatrix();
}

}  // namespace

TypeRegistry::TypeRegistry(const std::vector<TypeSpec>& table) {
  for (const TypeSpec& entry : table) {
    ItemType type;
    type.name = entry.name;
    type.code = static_cast<TypeCode>(types_.size());
    type.base = entry.base ? find(entry.base) : kNoType;
    if (entry.base && type.base == kNoType)
      throw std::logic_error(std::string("type table: base of \"") + entry.name + "\" comes later");
    if (type.base != kNoType) type.channels = types_[type.base].channels;
    for (const ChannelSpec& channel : entry.channels)
      type.channels.push_back({channel.name, channel.type, initialValue(channel)});
    if (!byName_.emplace(type.name, type.code).second)
      throw std::logic_error(std::string("type table: \"") + entry.name + "\" appears twice");
    types_.push_back(std::move(type));
  }
}

const TypeRegistry& TypeRegistry::builtin() {
  static const TypeRegistry registry(builtinTable());
  return registry;
}

TypeCode TypeRegistry::find(std::string_view name) const {
  auto it = byName_.find(std::string(name));
  return it == byName_.end() ? kNoType : it->second;
}

const ItemType* TypeRegistry::type(TypeCode code) const {
  if (code < 0 || static_cast<std::size_t>(code) >= types_.size()) return nullptr;
  return &types_[code];
}

bool TypeRegistry::derives(TypeCode type, TypeCode base) const {
  if (!this->type(base)) return false;
  for (const ItemType* t = this->type(type); t; t = this->type(t->base))
    if (t->code == base) return true;
  return false;
}

int TypeRegistry::findChannel(TypeCode code, std::string_view name) const {
  const ItemType* t = type(code);
  if (!t) return -1;
  for (std::size_t i = 0; i < t->channels.size(); ++i)
    if (t->channels[i].name == name) return static_cast<int>(i);
  return -1;
}

}  // namespace vexo
