// The module's event log caught in memory: each entry as "LEVEL: TEXT".
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/gltf_log_msg.h"
#include "fake_host.h"
#include "host/vx_host.h"

struct LogCapture {
  FakeHost host;
  LogCapture() { CVxHost::set(&host); }
  ~LogCapture() { CVxHost::set(nullptr); }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  // Made after the host is set, so it finds the "io-status" subsystem.
  GltfLogMsg& log() {
    if (!log_) log_ = std::make_unique<GltfLogMsg>();
    return *log_;
  }
  const std::vector<std::string>& lines() const { return host.log; }

 private:
  std::unique_ptr<GltfLogMsg> log_;
};
