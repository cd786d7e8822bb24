#include "sdk_impl/sdk_log.h"

namespace vexo {

Severity severityOf(VxResult code) {
  if (VxFailed(code)) return Severity::Error;
  return code == VXR_WARNING ? Severity::Warning : Severity::Info;
}

VxResult SdkLogSubsystem::AddEntry(IVxLogEntry* entry) {
  std::unique_ptr<SdkLogEntry> own = service_.takeEntry(entry);
  if (!own) return VXR_BADARG;
  service_.log().addEntry(name_, severityOf(own->Code()), own->Text());
  return VXR_OK;
}

VxResult SdkLogSubsystem::PrintLine(const char* text, int output) {
  if (!text || (output != 0 && output != 1)) return VXR_BADARG;
  service_.log().printLine(name_, text, output);
  return VXR_OK;
}

VxResult SdkLogSubsystem::ResetCurrent() {
  service_.log().resetCurrent(name_);
  return VXR_OK;
}

std::unique_ptr<SdkLogEntry> SdkLogService::takeEntry(IVxLogEntry* entry) {
  auto it = entries_.find(entry);
  if (it == entries_.end()) return nullptr;
  std::unique_ptr<SdkLogEntry> own = std::move(it->second);
  entries_.erase(it);
  return own;
}

VxResult SdkLogService::SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) {
  if (!name || !subsystem) return VXR_BADARG;
  for (const auto& existing : subsystems_) {
    if (existing->Name() == std::string_view(name)) {
      *subsystem = existing.get();
      return VXR_OK;
    }
  }
  if (!EventLog::knownSubsystem(name)) return VXR_NOTFOUND;
  subsystems_.push_back(std::make_unique<SdkLogSubsystem>(*this, name));
  *subsystem = subsystems_.back().get();
  return VXR_OK;
}

VxResult SdkLogService::CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) {
  if (!text || !entry) return VXR_BADARG;
  auto own = std::make_unique<SdkLogEntry>(code, text);
  const IVxLogEntry* key = own.get();
  *entry = own.get();
  entries_.emplace(key, std::move(own));
  return VXR_OK;
}

}  // namespace vexo
