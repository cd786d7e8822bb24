#include "gltf_log_msg.h"

#include <cstdio>

namespace {
constexpr const char* kLogSubsystem = "io-status";
}

GltfLogMsg::GltfLogMsg() : CVxLogMessage(kLogSubsystem) {}

const char* GltfLogMsg::format(const char* format, va_list args) {
  // vsnprintf cuts at the buffer's end; a formatting error leaves an empty text.
  if (std::vsnprintf(text_, sizeof text_, format, args) < 0) text_[0] = '\0';
  return text_;
}

#define GLTF_LOG_FORMAT(fmt)         \
  va_list args;                      \
  va_start(args, fmt);               \
  const char* text = format(fmt, args); \
  va_end(args)

void GltfLogMsg::info(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  printLine(text);
}

void GltfLogMsg::trace(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  traceLine(text);
}

void GltfLogMsg::warning(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  addEntry(VXR_WARNING, text);
  ++warnings_;
}

void GltfLogMsg::error(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  addEntry(VXR_FAILED, text);
  ++errors_;
}

void GltfLogMsg::reportWarning(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  addEntry(VXR_WARNING, text);
  raiseMessage(VXR_WARNING, text);
}

void GltfLogMsg::reportError(const char* fmt, ...) {
  GLTF_LOG_FORMAT(fmt);
  addEntry(VXR_FAILED, text);
  raiseMessage(VXR_FAILED, text);
}
