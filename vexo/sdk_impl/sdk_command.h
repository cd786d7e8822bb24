// IVxCommandService and IVxCommand over the host's commands.
#pragma once

#include <string>

#include "services/commands.h"
#include "vexo/vx_command.h"

namespace vexo {

class SdkScene;

class SdkCommand final : public IVxCommand {
 public:
  SdkCommand(SdkScene& scene, const CommandDef& def) : scene_(scene), command_(def) {}

  const char* Name() const override { return command_.def().name.c_str(); }
  unsigned ArgCount() override { return static_cast<unsigned>(command_.args().size()); }
  VxResult ArgLookup(const char* name, unsigned* index) override;
  VxResult SetArgItem(unsigned index, IVxItem* item) override;
  VxResult SetArgText(unsigned index, const char* text) override;
  VxResult SetArgInteger(unsigned index, std::int32_t value) override;
  VxResult ArgText(unsigned index, const char** text) override;
  VxResult Execute() override;
  const char* Message() override { return command_.message().c_str(); }
  void Release() override { delete this; }

 private:
  ~SdkCommand() = default;
  // The argument for a setter, or null when out of range or of another kind.
  CommandArg* arg(unsigned index, ArgKind kind);

  SdkScene& scene_;
  Command command_;
  std::string text_;  // what ArgText returned last
};

class SdkCommandService final : public IVxCommandService {
 public:
  explicit SdkCommandService(SdkScene& scene) : scene_(scene) {}
  VxResult CreateCommand(const char* name, IVxCommand** command) override;

 private:
  SdkScene& scene_;
};

}  // namespace vexo
