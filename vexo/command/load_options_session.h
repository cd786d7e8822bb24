// The loader options of a loaded plug-in, as the host runs them: the
// module's load-options command with the host's defaults and the persisted
// values applied, executed into the option set registered for "gltfLoader",
// and written back through the module's configuration I/O.
#pragma once

#include <string>

#include "import/gltf_load_options.h"
#include "sdk_impl/sdk_host.h"
#include "services/configuration.h"
#include "vexo/vx_attributes.h"

namespace vexo {

constexpr const char* kLoadOptionsCommand = "gltf.loadOptions";
constexpr const char* kGltfLoaderName = "gltfLoader";
constexpr const char* kGltfLoaderOptionsKey = "loaderOptions.gltf";

class LoadOptionsSession {
 public:
  LoadOptionsSession() = default;
  ~LoadOptionsSession();
  LoadOptionsSession(const LoadOptionsSession&) = delete;
  LoadOptionsSession& operator=(const LoadOptionsSession&) = delete;

  // Spawns the command, sets the host's defaults, then reads the entries
  // persisted under "loaderOptions.gltf" in `config` back through the
  // module's visitor. False with `error` when the plug-in lacks a server or a
  // persisted value is refused (named by file, line and column).
  bool open(SdkHost& host, const Configuration& config, std::string& error);

  IVxCommandServer& command() { return *command_; }

  // Sets the attribute called `name` from the text a user typed: "true" or
  // "false" (or 1, 0) for a boolean, a choice's value or label for a pop-up,
  // a number otherwise. False, leaving it, for an unknown name or a bad value.
  bool setFromText(const std::string& name, const std::string& text, std::string& error);

  // The command's values as the loader's options; false with `error` for a
  // value the host's loader cannot take.
  bool check(GltfLoadOptions& options, std::string& error) const;

  // Executes the command, which stores its values in the shared option set.
  bool apply(std::string& error);

  // The record's fields, written through the module's configuration I/O in
  // record order, as the new "loaderOptions.gltf" section of `config`.
  bool store(Configuration& config, std::string& error);

 private:
  SdkHost* host_ = nullptr;
  IVxCommandServer* command_ = nullptr;
};

// An attribute's value as printed: "true", "2.5", or for a pop-up "4 (Meters [m])".
std::string attributeValueText(const IVxAttributes& attrs, unsigned index);

// An option set's values as the loader's options, starting from the host's
// defaults; options the host does not know are left out. False with `error`
// for a value the loader cannot take.
bool toGltfLoadOptions(const IVxAttributes& attrs, GltfLoadOptions& options, std::string& error);

}  // namespace vexo
