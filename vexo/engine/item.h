// A scene item: its type, name, identity, place in the hierarchy and channel values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "animation/keys.h"
#include "engine/item_types.h"
#include "engine/locator_types.h"
#include "engine/value.h"

namespace vexo {

// The base action every other action falls back to.
inline constexpr std::string_view kSetupAction = "setup";
// The action that holds the user's current edits.
inline constexpr std::string_view kEditAction = "edit";

class Item {
 public:
  // `changes`, when given, is counted up whenever a value is set.
  Item(const ItemType& type, std::string name, std::string ident, std::uint64_t* changes = nullptr);
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;

  const ItemType& type() const { return *type_; }
  TypeCode typeCode() const { return type_->code; }
  const std::string& name() const { return name_; }
  const std::string& ident() const { return ident_; }

  Item* parent() const { return parent_; }
  const std::vector<Item*>& children() const { return children_; }

  // A locator's transform items in stack order, index 0 applied first; empty for other items.
  const std::vector<Item*>& transforms() const { return transforms_; }
  // One of a locator's main transform items, or null.
  Item* mainTransform(MainTransform which) const { return mainTransforms_[static_cast<int>(which)]; }
  // The locator whose stack holds this transform item; null for any other item.
  Item* stackOwner() const { return stackOwner_; }

  std::size_t channelCount() const { return type_->channels.size(); }
  const ChannelDef& channel(std::size_t index) const { return type_->channels[index]; }

  // Sets a channel's value in one action. False when the channel does not
  // exist or the value is of another type than the channel's.
  bool setValue(std::size_t channel, std::string_view action, Value value);
  // The value the action itself holds, or null.
  const Value* actionValue(std::size_t channel, std::string_view action) const;
  // The value as read in an action: its own value, else the setup value,
  // else the channel's initial value. The channel index must be valid.
  const Value& value(std::size_t channel, std::string_view action) const;

  // Sets a channel's keys in one action; an empty curve removes them. False
  // when the channel does not exist or holds neither integers nor floats.
  bool setKeys(std::size_t channel, std::string_view action, KeyCurve keys);
  // The keys the action itself holds, or null.
  const KeyCurve* actionKeys(std::size_t channel, std::string_view action) const;
  // The actions that hold keys for the channel, by name.
  std::vector<std::string> keyedActions(std::size_t channel) const;

 private:
  friend class Scene;  // links parents and children, locators and their transforms

  using ActionValues = std::map<std::string, Value, std::less<>>;

  const ItemType* type_;
  std::string name_;
  std::string ident_;
  Item* parent_ = nullptr;
  std::vector<Item*> children_;
  std::vector<Item*> transforms_;
  Item* mainTransforms_[kMainTransformCount] = {};
  Item* stackOwner_ = nullptr;
  std::vector<ActionValues> values_;  // one per channel
  using ActionKeys = std::map<std::string, KeyCurve, std::less<>>;
  std::vector<ActionKeys> keys_;  // one per channel once any is keyed
  std::uint64_t* changes_;
};

}  // namespace vexo
