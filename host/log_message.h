// The log-message base: one event-log subsystem with entries and plain lines.
#pragma once

#include "vexo/vx_result.h"

class IVxLogService;
class IVxLogSubsystem;

class CVxLogMessage {
 public:
  // Looks up the "logsys" service and the named subsystem.
  explicit CVxLogMessage(const char* subsystem);
  virtual ~CVxLogMessage() = default;

  // A plain text line on the main output.
  void printLine(const char* text);
  // A plain text line on the trace output.
  void traceLine(const char* text);
  // An entry whose severity follows `code`; falls back to a plain line when
  // no entry can be created.
  void addEntry(VxResult code, const char* text);
  // Forgets the subsystem's current entry.
  void resetLog();
  // Shows `text` to the user through the message table "common", entry 2020.
  static void raiseMessage(VxResult code, const char* text);

 private:
  IVxLogService* service_ = nullptr;
  IVxLogSubsystem* subsystem_ = nullptr;
};
