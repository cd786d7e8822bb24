// Item types by name, with single derivation and the channels each type carries.
//
// A type's channel list starts with its base type's channels, so a channel
// index means the same thing on an item of any type derived from the one
// that declared it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/value.h"

namespace vexo {

using TypeCode = std::int32_t;
constexpr TypeCode kNoType = -1;

struct ChannelDef {
  std::string name;
  ValueType type;
  Value initial;  // the value an item has until one is set
};

struct ItemType {
  std::string name;
  TypeCode code;
  TypeCode base;  // kNoType for a root type
  std::vector<ChannelDef> channels;
};

// One row of a type table: channels declared by the type itself.
struct ChannelSpec {
  const char* name;
  ValueType type;
  double number;     // initial value of an integer or float channel
  const char* text;  // initial value of a text channel
};

struct TypeSpec {
  const char* name;
  const char* base;  // null for a root type; must appear earlier in the table
  std::vector<ChannelSpec> channels;
};

class TypeRegistry {
 public:
  // Builds the types from a table; a base name missing from the rows above is a programming error.
  explicit TypeRegistry(const std::vector<TypeSpec>& table);

  // The types every scene of this host knows.
  static const TypeRegistry& builtin();

  std::size_t size() const { return types_.size(); }
  TypeCode find(std::string_view name) const;  // kNoType when unknown
  const ItemType* type(TypeCode code) const;   // null when out of range
  // True when `type` is `base` or derives from it.
  bool derives(TypeCode type, TypeCode base) const;
  // Index into type(code)->channels, or -1.
  int findChannel(TypeCode code, std::string_view name) const;

 private:
  std::vector<ItemType> types_;
  std::unordered_map<std::string, TypeCode> byName_;
};

}  // namespace vexo
