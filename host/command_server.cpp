#include "command_server.h"

VxResult CVxCommandServer::Execute() {
  try {
    message_.clear();
    return cmd_Execute();
  } catch (...) {
    message_.clear();
    return VXR_FAILED;
  }
}

VxResult CVxCommandServer::fail(const char* message) {
  try {
    message_ = message ? message : "";
  } catch (...) {
    message_.clear();
  }
  return VXR_FAILED;
}
