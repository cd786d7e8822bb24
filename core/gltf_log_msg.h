// The saver's event-log writer: printf-style messages into "io-status",
// with the warning and error counters behind the end-of-save summary.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "gltf/report.h"
#include "host/log_message.h"

class GltfLogMsg : public CVxLogMessage {
 public:
  static constexpr std::size_t kBufferSize = 1024;  // messages are cut at 1023 characters

  GltfLogMsg();

  void info(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void trace(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Counted: each adds one to its counter.
  void warning(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void error(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Reported: also shown to the user, never counted.
  void reportWarning(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void reportError(const char* format, ...) __attribute__((format(printf, 2, 3)));

  std::uint32_t warnings() const { return warnings_; }
  std::uint32_t errors() const { return errors_; }
  void resetCounters() { warnings_ = errors_ = 0; }

  // The same log seen by the glTF document, which hands over finished texts.
  GltfReporter& reporter() { return reporter_; }

 private:
  const char* format(const char* format, va_list args);

  class Reporter : public GltfReporter {
   public:
    explicit Reporter(GltfLogMsg& log) : log_(log) {}
    void info(const char* text) override { log_.info("%s", text); }
    void warning(const char* text) override { log_.warning("%s", text); }
    void error(const char* text) override { log_.error("%s", text); }

   private:
    GltfLogMsg& log_;
  };

  Reporter reporter_{*this};
  char text_[kBufferSize] = {};
  std::uint32_t warnings_ = 0;
  std::uint32_t errors_ = 0;
};
