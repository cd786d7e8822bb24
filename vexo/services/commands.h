// Host commands: named operations on a scene with typed, named arguments.
//
// A command is made from its definition, given arguments, and run; it keeps
// its arguments afterwards so that results can be read from them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

class Item;
class Scene;

enum class ArgKind { Item, Text, Integer };

struct CommandArg {
  std::string name;
  ArgKind kind = ArgKind::Text;
  bool set = false;
  Item* item = nullptr;
  std::string text;
  std::int32_t integer = 0;
};

// Runs a command over its arguments; false, with the reason in `message`, when it fails.
using CommandRun = std::function<bool(Scene& scene, std::vector<CommandArg>& args, std::string& message)>;

struct CommandDef {
  std::string name;
  std::vector<std::pair<std::string, ArgKind>> args;
  CommandRun run;
};

// The host's commands, by name: "item.exportTags".
const CommandDef* findCommand(std::string_view name);

class Command {
 public:
  explicit Command(const CommandDef& def);

  const CommandDef& def() const { return *def_; }
  std::vector<CommandArg>& args() { return args_; }
  // The argument's index, or -1.
  int argIndex(std::string_view name) const;
  bool run(Scene& scene) {
    message_.clear();
    return def_->run(scene, args_, message_);
  }
  const std::string& message() const { return message_; }

 private:
  const CommandDef* def_;
  std::vector<CommandArg> args_;
  std::string message_;
};

}  // namespace vexo
