// A minimal in-memory host for testing module code without the headless
// host: records log entries, raised messages and registered servers, and
// serves integer user values from a map.
#pragma once

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "vexo/vx_module.h"
#include "vexo/vx_services.h"

class FakeHost : public IVxHost, IVxUserValues, IVxLogService, IVxLogSubsystem, IVxMessageService {
 public:
  std::map<std::string, std::string> userValues;
  std::vector<std::string> userValueReads;  // keys in the order they were read
  std::vector<std::string> log;             // "LEVEL: TEXT", LEVEL one of info, trace, warning, error
  std::vector<std::string> messages;        // "table/entry: text"
  std::vector<IVxFactory*> servers;
  std::vector<std::pair<std::string, IVxAttributes*>> loaderOptions;  // in registration order
  bool refuseEntries = false;  // CreateEntry fails, as when the log is full

  // IVxHost
  VxResult RegisterServer(IVxFactory* factory) override {
    servers.push_back(factory);
    return VXR_OK;
  }
  IVxUserValues* UserValues() override { return this; }
  IVxLogService* LogService() override { return this; }
  IVxMessageService* MessageService() override { return this; }
  IVxSceneService* SceneService() override { return nullptr; }  // no scene, no types
  VxResult RegisterLoaderOptions(const char* loader, IVxAttributes* options) override {
    loaderOptions.emplace_back(loader, options);
    return VXR_OK;
  }

  // IVxUserValues
  VxResult GetInt(const char* key, std::int32_t* value) override {
    userValueReads.push_back(key);
    const auto found = userValues.find(key);
    if (found == userValues.end()) return VXR_NOTFOUND;
    *value = std::atoi(found->second.c_str());
    return VXR_OK;
  }
  VxResult GetFloat(const char*, double*) override { return VXR_NOTFOUND; }
  VxResult GetString(const char*, const char**) override { return VXR_NOTFOUND; }

  // IVxLogService
  VxResult SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) override {
    if (std::string(name) != "io-status") return VXR_NOTFOUND;
    *subsystem = this;
    return VXR_OK;
  }
  VxResult CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) override {
    if (refuseEntries) return VXR_FAILED;
    entries_.push_back(std::make_unique<Entry>(code, text));
    *entry = entries_.back().get();
    return VXR_OK;
  }

  // IVxLogSubsystem
  const char* Name() const override { return "io-status"; }
  VxResult AddEntry(IVxLogEntry* entry) override {
    const VxResult code = entry->Code();
    log.push_back(std::string(VxFailed(code) ? "error: " : code == VXR_WARNING ? "warning: " : "info: ") +
                  entry->Text());
    return VXR_OK;
  }
  VxResult PrintLine(const char* text, int output) override {
    log.push_back(std::string(output == 1 ? "trace: " : "info: ") + text);
    return VXR_OK;
  }
  VxResult ResetCurrent() override { return VXR_OK; }

  // IVxMessageService
  VxResult Raise(VxResult, const char* table, std::uint32_t entry, unsigned argCount,
                 const char* const* args) override {
    messages.push_back(std::string(table) + "/" + std::to_string(entry) + ": " + (argCount ? args[0] : ""));
    return VXR_OK;
  }

 private:
  struct Entry : IVxLogEntry {
    Entry(VxResult c, const char* t) : code(c), text(t) {}
    VxResult Code() const override { return code; }
    const char* Text() const override { return text.c_str(); }
    VxResult code;
    std::string text;
  };
  std::vector<std::unique_ptr<Entry>> entries_;
};
