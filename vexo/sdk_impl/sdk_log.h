// The event log service "logsys": subsystems and entries over the host's EventLog.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "services/event_log.h"
#include "vexo/vx_services.h"

namespace vexo {

// Error for a failure code, warning for VXR_WARNING, information otherwise.
Severity severityOf(VxResult code);

class SdkLogEntry final : public IVxLogEntry {
 public:
  SdkLogEntry(VxResult code, std::string text) : code_(code), text_(std::move(text)) {}
  VxResult Code() const override { return code_; }
  const char* Text() const override { return text_.c_str(); }

 private:
  VxResult code_;
  std::string text_;
};

class SdkLogService;

class SdkLogSubsystem final : public IVxLogSubsystem {
 public:
  SdkLogSubsystem(SdkLogService& service, std::string name) : service_(service), name_(std::move(name)) {}
  const char* Name() const override { return name_.c_str(); }
  // Takes only entries of this service that no subsystem holds yet.
  VxResult AddEntry(IVxLogEntry* entry) override;
  VxResult PrintLine(const char* text, int output) override;
  VxResult ResetCurrent() override;

 private:
  SdkLogService& service_;
  std::string name_;
};

class SdkLogService final : public IVxLogService {
 public:
  explicit SdkLogService(EventLog& log) : log_(log) {}

  EventLog& log() { return log_; }
  // Hands over an entry this service created and no subsystem took yet; null otherwise.
  std::unique_ptr<SdkLogEntry> takeEntry(IVxLogEntry* entry);

  // VXR_NOTFOUND for a subsystem the host does not have.
  VxResult SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) override;
  // The service holds each entry until a subsystem takes it, so one never added is not leaked.
  VxResult CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) override;

 private:
  EventLog& log_;
  std::vector<std::unique_ptr<SdkLogSubsystem>> subsystems_;
  std::unordered_map<const IVxLogEntry*, std::unique_ptr<SdkLogEntry>> entries_;
};

}  // namespace vexo
