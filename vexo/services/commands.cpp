#include "services/commands.h"

#include <map>
#include <variant>

#include "engine/scene.h"

namespace vexo {
namespace {

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// "item.exportTags": puts in "tag" the export tag of "item", an "actionclip"
// (the only type with one): its setup value of "exportTag", which an exporter
// puts in front of the action's name. "itemType" names the type the item must
// have (its own type when not set); "tagType" 0, the default, asks for that prefix.
bool exportTags(Scene& scene, std::vector<CommandArg>& args, std::string& message) {
  CommandArg& item = args[0];
  CommandArg& itemType = args[1];
  CommandArg& tagType = args[2];
  CommandArg& tag = args[3];
  if (!item.set || !item.item) {
    message = "the argument \"item\" names no item";
    return false;
  }
  const TypeCode clip = scene.types().find("actionclip");
  if (itemType.set) {
    const TypeCode named = scene.types().find(itemType.text);
    if (named == kNoType) {
      message = "unknown item type " + quoted(itemType.text);
      return false;
    }
    if (!scene.types().derives(item.item->typeCode(), named)) {
      message = "item " + quoted(item.item->name()) + " is of type " + quoted(item.item->type().name) + ", not " +
                quoted(itemType.text);
      return false;
    }
  }
  if (!scene.types().derives(item.item->typeCode(), clip)) {
    message = "items of type " + quoted(item.item->type().name) + " have no export tags; \"actionclip\" items do";
    return false;
  }
  if (tagType.set && tagType.integer != 0) {
    message = "unknown tag type " + std::to_string(tagType.integer) + "; tag type 0 is the name prefix";
    return false;
  }
  const int channel = scene.types().findChannel(item.item->typeCode(), "exportTag");
  const auto* text = std::get_if<std::string>(&item.item->value(static_cast<std::size_t>(channel), kSetupAction));
  tag.text = text ? *text : std::string();
  tag.set = true;
  return true;
}

const std::map<std::string, CommandDef, std::less<>>& commands() {
  static const std::map<std::string, CommandDef, std::less<>> table = [] {
    std::map<std::string, CommandDef, std::less<>> t;
    CommandDef tags{"item.exportTags",
                    {{"item", ArgKind::Item}, {"itemType", ArgKind::Text}, {"tagType", ArgKind::Integer},
                     {"tag", ArgKind::Text}},
                    exportTags};
    t.emplace(tags.name, tags);
    return t;
  }();
  return table;
}

}  // namespace

const CommandDef* findCommand(std::string_view name) {
  const auto& table = commands();
  auto it = table.find(name);
  return it == table.end() ? nullptr : &it->second;
}

Command::Command(const CommandDef& def) : def_(&def) {
  for (const auto& [name, kind] : def.args) {
    CommandArg arg;
    arg.name = name;
    arg.kind = kind;
    args_.push_back(std::move(arg));
  }
}

int Command::argIndex(std::string_view name) const {
  for (std::size_t i = 0; i < args_.size(); ++i)
    if (args_[i].name == name) return static_cast<int>(i);
  return -1;
}

}  // namespace vexo
