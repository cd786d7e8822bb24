#include "fake_host.h"

#include <cstdlib>

VxResult FakeHost::RegisterServer(IVxFactory* factory) {
  servers.push_back(factory);
  return VXR_OK;
}

VxResult FakeHost::GetInt(const char* key, std::int32_t* value) {
  userValueReads.push_back(key);
  auto found = userValues.find(key);
  if (found == userValues.end()) return VXR_NOTFOUND;
  *value = std::atoi(found->second.c_str());
  return VXR_OK;
}

VxResult FakeHost::SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) {
  if (std::string(name) != "io-status") return VXR_NOTFOUND;
  *subsystem = this;
  return VXR_OK;
}

VxResult FakeHost::CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) {
  if (refuseEntries) return VXR_FAILED;
  auto created = std::make_unique<Entry>();
  created->code = code;
  created->text = text;
  *entry = created.get();
  entries_.push_back(std::move(created));
  return VXR_OK;
}

VxResult FakeHost::AddEntry(IVxLogEntry* entry) {
  const VxResult code = entry->Code();
  log.push_back({VxFailed(code) ? "error" : code == VXR_WARNING ? "warning" : "info", entry->Text()});
  return VXR_OK;
}

VxResult FakeHost::PrintLine(const char* text, int output) {
  log.push_back({output == 1 ? "trace" : "info", text});
  return VXR_OK;
}

VxResult FakeHost::Raise(VxResult, const char* table, std::uint32_t entry, unsigned argCount,
                         const char* const* args) {
  messages.push_back(std::string(table) + "/" + std::to_string(entry) + ": " + (argCount ? args[0] : ""));
  return VXR_OK;
}
