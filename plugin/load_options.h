// The options of the host's glTF loader "gltfLoader", which this module
// carries but does not use: the command that shows and sets them, the record
// persisted under "loaderOptions.gltf", and the visitor that reads the
// persisted entries back into the command.
#pragma once

#include "host/attributes.h"
#include "host/command_server.h"
#include "host/config_record.h"

namespace loadopts {

constexpr const char* kLoaderName = "gltfLoader";
constexpr const char* kConfigKey = "loaderOptions.gltf";
constexpr const char* kCommandServer = "gltf.loadOptions";
constexpr const char* kConfigServer = "loaderOptions.gltf";
constexpr const char* kVisitorServer = "loaderOptions.gltf.visitor";

// The eighteen attributes in their order; the index is the position.
const CVxAttrDesc* attributes();
unsigned attributeCount();
// The record: its own field order, each field bound to an attribute index.
const CVxRecord& record();

}  // namespace loadopts

// The option set shared by every command and read by the loader, built once
// by the first command and registered for "gltfLoader".
class LoadOptionSet : public CVxAttributes {
 public:
  LoadOptionSet();
  // The module-wide set, built (and registered with the host) on the first
  // call; null when it could not be built.
  static LoadOptionSet* shared();
  // Whether the set was built since the module loaded.
  static bool built();
};

// Shows the options as attributes, starting from the shared set's values;
// executing it stores them in the shared set.
class LoadOptionsCmd : public CVxCommandServer {
 public:
  LoadOptionsCmd();

 protected:
  VxResult cmd_Execute() override;

 private:
  LoadOptionSet* shared_;
};

// The record's readers and writers under "loaderOptions.gltf".
class LoadOptionsIO : public CVxConfigIO {
 public:
  LoadOptionsIO() : CVxConfigIO(loadopts::kConfigKey, loadopts::record()) {}
};

// Sets the command's attributes from the entries persisted under "loaderOptions.gltf".
class LoadPersistOptionsVisitor : public CVxPersistVisitor {
 public:
  LoadPersistOptionsVisitor() : CVxPersistVisitor(loadopts::kConfigKey, loadopts::record()) {}
};
