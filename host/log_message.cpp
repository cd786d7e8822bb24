#include "log_message.h"

#include "vx_host.h"

namespace {
constexpr const char* kMessageTable = "common";
constexpr std::uint32_t kMessageEntry = 2020;
}  // namespace

CVxLogMessage::CVxLogMessage(const char* subsystem) {
  IVxHost* host = CVxHost::get();
  service_ = host ? host->LogService() : nullptr;
  if (service_ && VxFailed(service_->SubsystemLookup(subsystem, &subsystem_))) subsystem_ = nullptr;
}

void CVxLogMessage::printLine(const char* text) {
  if (subsystem_) subsystem_->PrintLine(text, 0);
}

void CVxLogMessage::traceLine(const char* text) {
  if (subsystem_) subsystem_->PrintLine(text, 1);
}

void CVxLogMessage::addEntry(VxResult code, const char* text) {
  IVxLogEntry* entry = nullptr;
  if (service_ && subsystem_ && VxOk(service_->CreateEntry(code, text, &entry)) && entry) {
    subsystem_->AddEntry(entry);
    return;
  }
  printLine(text);
}

void CVxLogMessage::resetLog() {
  if (subsystem_) subsystem_->ResetCurrent();
}

void CVxLogMessage::raiseMessage(VxResult code, const char* text) {
  IVxHost* host = CVxHost::get();
  IVxMessageService* messages = host ? host->MessageService() : nullptr;
  if (messages) messages->Raise(code, kMessageTable, kMessageEntry, 1, &text);
}
