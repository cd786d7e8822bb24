// Wrapper over a host command: created by name, arguments set by name, executed.
#pragma once

#include <cstdint>
#include <string>

#include "item.h"
#include "scene.h"
#include "vexo/vx_command.h"

class CVxCommand {
 public:
  // Empty (test() false) when the host has no command of that name.
  CVxCommand(const CVxUser_Scene& scene, const char* name);
  ~CVxCommand();
  CVxCommand(const CVxCommand&) = delete;
  CVxCommand& operator=(const CVxCommand&) = delete;

  bool test() const { return command_ != nullptr; }
  // The argument's index, or -1 when the command has none of that name.
  int argIndex(const char* name) const;
  // Each setter is false when there is no such argument or it takes another kind of value.
  bool setItem(int arg, const CVxUser_Item& item) const;
  bool setText(int arg, const std::string& text) const;
  bool setInteger(int arg, std::int32_t value) const;
  // False, leaving `text` as it was, when the argument holds no value.
  bool argText(int arg, std::string& text) const;

  // The host's result code; VXR_NOTIMPL for an empty command.
  VxResult execute() const { return command_ ? command_->Execute() : VXR_NOTIMPL; }
  // Why the last execution failed; empty otherwise.
  std::string message() const;

 private:
  IVxCommand* command_ = nullptr;
};
