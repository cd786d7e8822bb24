#include "engine/item_types.h"

#include <stdexcept>

namespace vexo {
namespace {

constexpr ValueType kInt = ValueType::Integer;
constexpr ValueType kFloat = ValueType::Float;
constexpr ValueType kText = ValueType::Text;

// The built-in types. Locators are the items with a place in the scene
// hierarchy; shader-tree layers share "textureLayer"; the transform items
// ("scale", "rotation", ...) have no common base, so none tests as another.
const std::vector<TypeSpec>& builtinTable() {
  static const std::vector<TypeSpec> table = {
      {"scene", nullptr, {{"fps", kFloat, 24.0, nullptr},
                          {"currentS", kFloat, 0.0, nullptr},
                          {"currentE", kFloat, 5.0, nullptr}}},
      // "visible" 0 is the default state, which shows the item.
      {"locator", nullptr, {{"visible", kInt, 0.0, nullptr}}},
      {"groupLocator", "locator", {}},
      {"camera", "locator", {}},
      {"light", "locator", {}},
      {"sunLight", "light", {}},
      {"pointLight", "light", {}},
      {"spotLight", "light", {}},
      {"areaLight", "light", {}},
      {"mesh", "locator", {}},
      {"meshInst", "locator", {}},
      {"triSurf", "locator", {}},
      {"txtrLocator", "locator", {}},
      {"replicator", "locator", {}},
      {"textureLayer", nullptr, {{"enable", kInt, 1.0, nullptr}}},
      {"polyRender", "textureLayer", {{"resX", kInt, 1920.0, nullptr},
                                      {"resY", kInt, 1080.0, nullptr}}},
      {"mask", "textureLayer", {{"ptag", kText, 0.0, ""},
                                {"ptyp", kText, 0.0, "Material"}}},
      {"advancedMaterial", "textureLayer", {}},
      {"imageMap", "textureLayer", {{"effect", kText, 0.0, "diffColor"}}},
      {"lightMaterial", "textureLayer", {}},
      {"unityShader", "textureLayer", {}},
      {"unrealShader", "textureLayer", {}},
      {"glTFShader", "textureLayer", {}},
      {"morphDeform", nullptr, {{"enable", kInt, 1.0, nullptr}}},
      {"deformGroup", nullptr, {}},
      {"scale", nullptr, {}},
      {"rotation", nullptr, {}},
      {"translation", nullptr, {}},
      {"transform", nullptr, {}},
      {"shear", nullptr, {}},
      {"ikFullBody", nullptr, {}},
      {"actionclip", nullptr, {}},
      {"group", nullptr, {}},
      {"actor", "group", {}},
  };
  return table;
}

Value initialValue(const ChannelSpec& spec) {
  switch (spec.type) {
    case ValueType::Integer:
      return static_cast<std::int32_t>(spec.number);
    case ValueType::Float:
      return spec.number;
    case ValueType::Text:
      return std::string(spec.text ? spec.text : "");
    case ValueType::Matrix:
      break;
  }
  return identityMatrix();
}

}  // namespace

TypeRegistry::TypeRegistry(const std::vector<TypeSpec>& table) {
  for (const TypeSpec& spec : table) {
    ItemType type;
    type.name = spec.name;
    type.code = static_cast<TypeCode>(types_.size());
    type.base = spec.base ? find(spec.base) : kNoType;
    if (spec.base && type.base == kNoType)
      throw std::logic_error(std::string("type table: base of \"") + spec.name + "\" comes later");
    if (type.base != kNoType) type.channels = types_[type.base].channels;
    for (const ChannelSpec& channel : spec.channels)
      type.channels.push_back({channel.name, channel.type, initialValue(channel)});
    if (!byName_.emplace(type.name, type.code).second)
      throw std::logic_error(std::string("type table: \"") + spec.name + "\" appears twice");
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
