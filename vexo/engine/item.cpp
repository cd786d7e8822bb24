#include "engine/item.h"

#include <utility>

namespace vexo {

Item::Item(const ItemType& type, std::string name, std::string ident, std::uint64_t* changes)
    : type_(&type), name_(std::move(name)), ident_(std::move(ident)), values_(type.channels.size()), changes_(changes) {}

bool Item::setValue(std::size_t channel, std::string_view action, Value value) {
  if (channel >= values_.size() || valueTypeOf(value) != this->channel(channel).type) return false;
  if (changes_) ++*changes_;
  ActionValues& values = values_[channel];
  auto it = values.find(action);
  if (it == values.end())
    values.emplace(std::string(action), std::move(value));
  else
    it->second = std::move(value);
  return true;
}

const Value* Item::actionValue(std::size_t channel, std::string_view action) const {
  if (channel >= values_.size()) return nullptr;
  const ActionValues& values = values_[channel];
  auto it = values.find(action);
  return it == values.end() ? nullptr : &it->second;
}

const Value& Item::value(std::size_t channel, std::string_view action) const {
  if (const Value* own = actionValue(channel, action)) return *own;
  if (const Value* setup = actionValue(channel, kSetupAction)) return *setup;
  return this->channel(channel).initial;
}

bool Item::setKeys(std::size_t channel, std::string_view action, KeyCurve keys) {
  if (channel >= values_.size()) return false;
  const ValueType type = this->channel(channel).type;
  if (type != ValueType::Integer && type != ValueType::Float) return false;
  if (changes_) ++*changes_;
  if (keys_.empty()) keys_.resize(values_.size());
  ActionKeys& curves = keys_[channel];
  auto it = curves.find(action);
  if (keys.empty()) {
    if (it != curves.end()) curves.erase(it);
  } else if (it == curves.end()) {
    curves.emplace(std::string(action), std::move(keys));
  } else {
    it->second = std::move(keys);
  }
  return true;
}

const KeyCurve* Item::actionKeys(std::size_t channel, std::string_view action) const {
  if (channel >= keys_.size()) return nullptr;
  const ActionKeys& curves = keys_[channel];
  if (curves.empty()) return nullptr;
  auto it = curves.find(action);
  return it == curves.end() ? nullptr : &it->second;
}

std::vector<std::string> Item::keyedActions(std::size_t channel) const {
  std::vector<std::string> names;
  if (channel < keys_.size())
    for (const auto& [name, curve] : keys_[channel]) names.push_back(name);
  return names;
}

}  // namespace vexo
