// A minimal in-memory host for testing module code without the headless
// host: records log entries, raised messages and registered servers, and
// serves integer user values from a map.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "vexo/vx_module.h"
#include "vexo/vx_scene.h"
#include "vexo/vx_services.h"

struct FakeLogLine {
  std::string level;  // "info", "trace", "warning", "error"
  std::string text;
};

class FakeHost : public IVxHost,
                 IVxUserValues,
                 IVxLogService,
                 IVxLogSubsystem,
                 IVxMessageService,
                 IVxSceneService {
 public:
  std::map<std::string, std::string> userValues;
  std::vector<std::string> userValueReads;  // keys in the order they were read
  std::vector<FakeLogLine> log;
  std::vector<std::string> messages;  // "table/entry: text"
  std::vector<IVxFactory*> servers;
  bool refuseEntries = false;  // CreateEntry fails, as when the log is full

  // IVxHost
  VxResult RegisterServer(IVxFactory* factory) override;
  IVxUserValues* UserValues() override { return this; }
  IVxLogService* LogService() override { return this; }
  IVxMessageService* MessageService() override { return this; }
  IVxSceneService* SceneService() override { return this; }

  // IVxUserValues
  VxResult GetInt(const char* key, std::int32_t* value) override;
  VxResult GetFloat(const char*, double*) override { return VXR_NOTFOUND; }
  VxResult GetString(const char*, const char**) override { return VXR_NOTFOUND; }

  // IVxLogService
  VxResult SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) override;
  VxResult CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) override;

  // IVxLogSubsystem
  const char* Name() const override { return "io-status"; }
  VxResult AddEntry(IVxLogEntry* entry) override;
  VxResult PrintLine(const char* text, int output) override;
  VxResult ResetCurrent() override { ++resets; return VXR_OK; }
  int resets = 0;

  // IVxMessageService
  VxResult Raise(VxResult code, const char* table, std::uint32_t entry, unsigned argCount,
                 const char* const* args) override;

  // IVxSceneService: no types.
  VxResult LookupType(const char*, VxTypeCode*) override { return VXR_NOTFOUND; }
  VxResult TypeName(VxTypeCode, const char**) override { return VXR_NOTFOUND; }
  VxResult TestType(VxTypeCode, VxTypeCode) override { return VXR_FALSE; }

 private:
  struct Entry : IVxLogEntry {
    VxResult code;
    std::string text;
    VxResult Code() const override { return code; }
    const char* Text() const override { return text.c_str(); }
  };
  std::vector<std::unique_ptr<Entry>> entries_;
};
