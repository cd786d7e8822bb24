// Server factories and the module object handed to the host.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vexo/vx_module.h"

// A tag table: (tag name, tag value) pairs kept as strings.
class CVxTagTable : public IVxStaticDesc {
 public:
  CVxTagTable(std::vector<std::pair<std::string, std::string>> tags) : tags_(std::move(tags)) {}
  unsigned TagCount() const override { return static_cast<unsigned>(tags_.size()); }
  VxResult TagByIndex(unsigned index, VxTag* tag) const override;

 private:
  std::vector<std::pair<std::string, std::string>> tags_;
};

// A factory with one server interface besides the static description; each
// Spawn call not overridden returns null, as for an interface not listed.
class CVxFactoryBase : public IVxFactory {
 public:
  CVxFactoryBase(std::string name, CVxTagTable tags, const char* interfaceName)
      : name_(std::move(name)), tags_(std::move(tags)), interface_(interfaceName) {}
  virtual ~CVxFactoryBase() = default;
  const char* ServerName() const override { return name_.c_str(); }
  unsigned InterfaceCount() const override { return 2; }
  const char* InterfaceName(unsigned index) const override;
  const IVxStaticDesc* StaticDesc() const override { return &tags_; }
  IVxSaver* SpawnSaver() override { return nullptr; }
  IVxCommandServer* SpawnCommand() override { return nullptr; }
  IVxConfigIO* SpawnConfigIO() override { return nullptr; }
  IVxPersistVisitor* SpawnPersistVisitor() override { return nullptr; }

 protected:
  // No instance, rather than an exception into the host, when it cannot be built.
  template <typename T>
  static T* spawn() {
    try {
      return new T();
    } catch (...) {
      return nullptr;
    }
  }

 private:
  std::string name_;
  CVxTagTable tags_;
  const char* interface_;
};

// A factory for a saver class T (derived from CVxSceneSaver).
template <typename T>
class CVxSaverFactory : public CVxFactoryBase {
 public:
  CVxSaverFactory(std::string name, CVxTagTable tags) : CVxFactoryBase(std::move(name), std::move(tags), VX_INTERFACE_SAVER) {}
  IVxSaver* SpawnSaver() override { return spawn<T>(); }
};

// A factory for a command server class T.
template <typename T>
class CVxCommandFactory : public CVxFactoryBase {
 public:
  CVxCommandFactory(std::string name, CVxTagTable tags)
      : CVxFactoryBase(std::move(name), std::move(tags), VX_INTERFACE_COMMAND) {}
  IVxCommandServer* SpawnCommand() override { return spawn<T>(); }
};

// A factory for a configuration I/O class T.
template <typename T>
class CVxConfigIOFactory : public CVxFactoryBase {
 public:
  CVxConfigIOFactory(std::string name, CVxTagTable tags)
      : CVxFactoryBase(std::move(name), std::move(tags), VX_INTERFACE_CONFIGIO) {}
  IVxConfigIO* SpawnConfigIO() override { return spawn<T>(); }
};

// A factory for a persist visitor class T.
template <typename T>
class CVxPersistVisitorFactory : public CVxFactoryBase {
 public:
  CVxPersistVisitorFactory(std::string name, CVxTagTable tags)
      : CVxFactoryBase(std::move(name), std::move(tags), VX_INTERFACE_PERSISTVISITOR) {}
  IVxPersistVisitor* SpawnPersistVisitor() override { return spawn<T>(); }
};

// The module object: owns the factories it registered with the host.
class CVxModule : public IVxModule {
 public:
  explicit CVxModule(std::string name) : name_(std::move(name)) {}
  virtual ~CVxModule() = default;
  const char* Name() const override { return name_.c_str(); }
  void Release() override { delete this; }

  // Registers the factory with the host and keeps it alive with the module.
  VxResult addServer(IVxHost* host, std::unique_ptr<CVxFactoryBase> factory);

 private:
  std::string name_;
  std::vector<std::unique_ptr<CVxFactoryBase>> factories_;
};
