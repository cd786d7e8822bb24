// The host's event log: entries and plain lines of named subsystems.
//
// Everything logged is printed at once as "info: TEXT", "warning: TEXT" or
// "error: TEXT" and kept in memory.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

enum class Severity { Info, Warning, Error };

// "info", "warning" or "error".
const char* severityName(Severity severity);

struct LogRecord {
  std::string subsystem;
  Severity severity;
  std::string text;
  bool entry;                          // false for a plain line
  int output;                          // plain lines: 0 main output, 1 trace output
  std::optional<std::size_t> attachedTo;  // plain lines: the entry they follow, if any
};

class EventLog {
 public:
  // Lines are printed to `out`; null keeps them in memory only.
  explicit EventLog(std::ostream* out) : out_(out) {}

  // The subsystems this host has, such as "io-status".
  static bool knownSubsystem(std::string_view name);

  void addEntry(std::string_view subsystem, Severity severity, std::string_view text);
  // Plain lines print as information, whatever the output.
  void printLine(std::string_view subsystem, std::string_view text, int output);
  // Later plain lines of the subsystem follow no entry.
  void resetCurrent(std::string_view subsystem);

  const std::vector<LogRecord>& records() const { return records_; }

 private:
  void print(Severity severity, std::string_view text);
  std::optional<std::size_t>& current(std::string_view subsystem);

  std::ostream* out_;
  std::vector<LogRecord> records_;
  std::vector<std::pair<std::string, std::optional<std::size_t>>> current_;
};

}  // namespace vexo
