// The command-server base: an attribute list that the host sets and executes.
#pragma once

#include <string>

#include "attributes.h"

class CVxCommandServer : public CVxAttributeList<IVxCommandServer> {
 public:
  using CVxAttributeList<IVxCommandServer>::CVxAttributeList;

  // No exception reaches the host: one from cmd_Execute fails the execution.
  VxResult Execute() override;
  const char* Message() const override { return message_.c_str(); }
  void Release() override { delete this; }

 protected:
  // The command's work over its attributes; a failure sets the message with fail().
  virtual VxResult cmd_Execute() = 0;
  VxResult fail(const char* message);

 private:
  std::string message_;
};
