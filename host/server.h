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

// A factory for a saver class T (derived from CVxSceneSaver), exposing the
// saver and static-description interfaces.
class CVxSaverFactoryBase : public IVxFactory {
 public:
  CVxSaverFactoryBase(std::string name, CVxTagTable tags) : name_(std::move(name)), tags_(std::move(tags)) {}
  virtual ~CVxSaverFactoryBase() = default;
  const char* ServerName() const override { return name_.c_str(); }
  unsigned InterfaceCount() const override { return 2; }
  const char* InterfaceName(unsigned index) const override;
  const IVxStaticDesc* StaticDesc() const override { return &tags_; }

 private:
  std::string name_;
  CVxTagTable tags_;
};

template <typename T>
class CVxSaverFactory : public CVxSaverFactoryBase {
 public:
  using CVxSaverFactoryBase::CVxSaverFactoryBase;
  // No instance, rather than an exception into the host, when it cannot be built.
  IVxSaver* SpawnSaver() override {
    try {
      return new T();
    } catch (...) {
      return nullptr;
    }
  }
};

// The module object: owns the factories it registered with the host.
class CVxModule : public IVxModule {
 public:
  explicit CVxModule(std::string name) : name_(std::move(name)) {}
  virtual ~CVxModule() = default;
  const char* Name() const override { return name_.c_str(); }
  void Release() override { delete this; }

  // Registers the factory with the host and keeps it alive with the module.
  VxResult addServer(IVxHost* host, std::unique_ptr<CVxSaverFactoryBase> factory);

 private:
  std::string name_;
  std::vector<std::unique_ptr<CVxSaverFactoryBase>> factories_;
};
