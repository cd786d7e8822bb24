#include "services/event_log.h"

namespace vexo {

const char* severityName(Severity severity) {
  static const char* const kNames[] = {"info", "warning", "error"};
  return kNames[static_cast<int>(severity)];
}

bool EventLog::knownSubsystem(std::string_view name) {
  static const std::string_view kSubsystems[] = {"io-status"};
  for (std::string_view known : kSubsystems)
    if (known == name) return true;
  return false;
}

void EventLog::addEntry(std::string_view subsystem, Severity severity, std::string_view text) {
  records_.push_back({std::string(subsystem), severity, std::string(text), true, 0, std::nullopt});
  current(subsystem) = records_.size() - 1;
  print(severity, text);
}

void EventLog::printLine(std::string_view subsystem, std::string_view text, int output) {
  records_.push_back({std::string(subsystem), Severity::Info, std::string(text), false, output, current(subsystem)});
  print(Severity::Info, text);
}

void EventLog::resetCurrent(std::string_view subsystem) { current(subsystem).reset(); }

void EventLog::print(Severity severity, std::string_view text) {
  if (!out_) return;
  *out_ << severityName(severity) << ": " << text;
  if (text.empty() || text.back() != '\n') *out_ << '\n';
  out_->flush();
}

std::optional<std::size_t>& EventLog::current(std::string_view subsystem) {
  for (auto& [name, entry] : current_)
    if (name == subsystem) return entry;
  current_.emplace_back(std::string(subsystem), std::nullopt);
  return current_.back().second;
}

}  // namespace vexo
