// Vexo SDK: plug-in modules, server factories and scene savers.
//
// A module is a shared library that exports one C symbol, _IVxModule_Create.
// The host calls it once after loading the file; the module registers its
// server factories with IVxHost::RegisterServer and returns its module
// object. The host spawns server instances through the factories and
// releases them with Release(), so memory never crosses the boundary.
#pragma once

#include <cstdint>

#include "vexo/vx_attributes.h"
#include "vexo/vx_result.h"
#include "vexo/vx_services.h"

class IVxScene;

// One (name, value) pair of a server's tag table.
struct VxTag {
  const char* name;
  const char* value;
};

// The static-description interface: a server's tag table.
class IVxStaticDesc {
 public:
  virtual unsigned TagCount() const = 0;
  virtual VxResult TagByIndex(unsigned index, VxTag* tag) const = 0;

 protected:
  ~IVxStaticDesc() = default;
};

// What the host passes to a saver for one save call.
class IVxSaveTarget {
 public:
  virtual IVxScene* Scene() = 0;
  // False during the host's verify pass, which only checks that a save could run.
  virtual bool IsRealSave() const = 0;

 protected:
  ~IVxSaveTarget() = default;
};

// The saver interface ("saver").
class IVxSaver {
 public:
  virtual VxResult Save(IVxSaveTarget* target, const char* destination) = 0;
  virtual void Release() = 0;

 protected:
  ~IVxSaver() = default;
};

// A server factory. Its interface list tells which Spawn call applies.
class IVxFactory {
 public:
  virtual const char* ServerName() const = 0;
  virtual unsigned InterfaceCount() const = 0;
  virtual const char* InterfaceName(unsigned index) const = 0;  // "saver", "staticDesc", ...
  virtual const IVxStaticDesc* StaticDesc() const = 0;
  // Each Spawn call is null unless the factory lists its interface.
  virtual IVxSaver* SpawnSaver() = 0;
  virtual IVxCommandServer* SpawnCommand() = 0;         // "command"
  virtual IVxConfigIO* SpawnConfigIO() = 0;             // "configIO"
  virtual IVxPersistVisitor* SpawnPersistVisitor() = 0;  // "persistVisitor"

 protected:
  ~IVxFactory() = default;
};

// The module object returned by the entry point.
class IVxModule {
 public:
  virtual const char* Name() const = 0;
  // Unloading: the module destroys its factories. No server instance may be alive.
  virtual void Release() = 0;

 protected:
  ~IVxModule() = default;
};

// Interface and tag names the host understands.
#define VX_INTERFACE_SAVER "saver"
#define VX_INTERFACE_STATICDESC "staticDesc"
#define VX_INTERFACE_COMMAND "command"
#define VX_INTERFACE_CONFIGIO "configIO"
#define VX_INTERFACE_PERSISTVISITOR "persistVisitor"
#define VX_TAG_SAVER_OUTCLASS "saver.outClass"
#define VX_TAG_SAVER_DOSTYPE "saver.dosType"
#define VX_TAG_SERVER_USERNAME "server.username"
#define VX_TAG_SERVER_LOGSUBSYSTEM "server.logsubsystem"

#define VX_MODULE_ENTRY_NAME "_IVxModule_Create"
extern "C" {
typedef IVxModule* (*VxModuleCreateFn)(IVxHost* host);
}
