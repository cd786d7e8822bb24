// Vexo SDK: host commands, created by name, given arguments and executed.
//
// Arguments are found by name and set by index. A command keeps its
// arguments after it runs, so a module reads results from them.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

class IVxCommand {
 public:
  virtual const char* Name() const = 0;
  virtual unsigned ArgCount() = 0;
  // VXR_NOTFOUND when the command has no argument of that name.
  virtual VxResult ArgLookup(const char* name, unsigned* index) = 0;
  // VXR_BADARG when the argument takes another kind of value.
  virtual VxResult SetArgItem(unsigned index, IVxItem* item) = 0;
  virtual VxResult SetArgText(unsigned index, const char* text) = 0;
  virtual VxResult SetArgInteger(unsigned index, std::int32_t value) = 0;
  // The argument as text; integers print in decimal, items as their ident.
  // VXR_FALSE, with an empty text, when the argument holds no value.
  virtual VxResult ArgText(unsigned index, const char** text) = 0;

  // VXR_OK when the command did its work, a failure code otherwise, with the reason in Message().
  virtual VxResult Execute() = 0;
  // The reason of the last failed execution; empty otherwise.
  virtual const char* Message() = 0;
  virtual void Release() = 0;

 protected:
  ~IVxCommand() = default;
};

class IVxCommandService {
 public:
  // VXR_NOTFOUND when the host has no command of that name. The caller releases the command.
  virtual VxResult CreateCommand(const char* name, IVxCommand** command) = 0;

 protected:
  ~IVxCommandService() = default;
};
