// Vexo SDK: global host services a module reaches through IVxHost.
//
// Every pointer the host hands out stays valid for as long as the module is
// loaded unless a method says otherwise. Strings returned by the host stay
// valid until the next call on the same object.
#pragma once

#include <cstdint>

#include "vexo/vx_result.h"

class IVxAttributes;
class IVxFactory;
class IVxSceneService;

// Integer, float and text values that users and configurations set by key.
class IVxUserValues {
 public:
  // VXR_NOTFOUND when the key does not exist, VXR_BADARG when it holds
  // a value that does not read as the requested type.
  virtual VxResult GetInt(const char* key, std::int32_t* value) = 0;
  virtual VxResult GetFloat(const char* key, double* value) = 0;
  virtual VxResult GetString(const char* key, const char** value) = 0;

 protected:
  ~IVxUserValues() = default;
};

// One entry of the event log, created by IVxLogService::CreateEntry and
// owned by the log once added to a subsystem.
class IVxLogEntry {
 public:
  virtual VxResult Code() const = 0;  // VXR_OK info, VXR_WARNING warning, failure code = error
  virtual const char* Text() const = 0;

 protected:
  ~IVxLogEntry() = default;
};

// A named stream of log entries, such as "io-status".
class IVxLogSubsystem {
 public:
  virtual const char* Name() const = 0;
  // Adds an entry made by IVxLogService::CreateEntry; the subsystem takes it over.
  virtual VxResult AddEntry(IVxLogEntry* entry) = 0;
  // A plain text line. Output 0 is the main output, 1 the trace output.
  virtual VxResult PrintLine(const char* text, int output) = 0;
  // Forgets the entry that later lines would be attached to.
  virtual VxResult ResetCurrent() = 0;

 protected:
  ~IVxLogSubsystem() = default;
};

// The event log service, "logsys".
class IVxLogService {
 public:
  virtual VxResult SubsystemLookup(const char* name, IVxLogSubsystem** subsystem) = 0;
  // Creates an entry whose severity follows the code. The caller must hand
  // it to a subsystem's AddEntry, which owns it from then on.
  virtual VxResult CreateEntry(VxResult code, const char* text, IVxLogEntry** entry) = 0;

 protected:
  ~IVxLogService() = default;
};

// Messages shown to the user: a table name, an entry number in that table
// and text arguments substituted for "%1", "%2", ... in the table's text.
class IVxMessageService {
 public:
  virtual VxResult Raise(VxResult code, const char* table, std::uint32_t entry,
                         unsigned argCount, const char* const* args) = 0;

 protected:
  ~IVxMessageService() = default;
};

// What the host gives a module when it loads it.
class IVxHost {
 public:
  // The host keeps the pointer; the factory must live until the module is released.
  virtual VxResult RegisterServer(IVxFactory* factory) = 0;
  virtual IVxUserValues* UserValues() = 0;
  virtual IVxLogService* LogService() = 0;
  virtual IVxMessageService* MessageService() = 0;
  virtual IVxSceneService* SceneService() = 0;
  // Registers the option set of a loader, by the loader's server name. The
  // host keeps the pointer and reads and sets the options through it; the set
  // must live until the module is released. A later set for the same loader replaces it.
  virtual VxResult RegisterLoaderOptions(const char* loader, IVxAttributes* options) = 0;

 protected:
  ~IVxHost() = default;
};
