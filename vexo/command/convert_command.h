// `vexo convert`: load a glTF file with the host's loader "gltfLoader", then
// save it through the plug-in as `vexo save` does.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "import/gltf_load_options.h"

namespace vexo {

struct ConvertRequest {
  std::string input;
  std::string destination;
  std::string format;                 // "glb", "gltf", or empty to go by the destination
  std::vector<std::string> settings;  // "KEY=VALUE" user values, after the convert's own default
  std::string pluginPath;             // empty: see pluginPath()
};

// Runs one conversion with the loader's `options`. The loader's warnings
// ("vexo: warning: FILE: ...") and errors, the event log and the command's
// hints go to `err`, the files written to `out`. Exit codes as runSave's; a
// file the loader cannot read exits 2.
int runConvert(const ConvertRequest& request, const GltfLoadOptions& options, std::ostream& out, std::ostream& err);

// Runs one conversion with the load options the user persisted (see
// `vexo load-options`); a configuration that cannot be read exits 2.
int runConvert(const ConvertRequest& request, std::ostream& out, std::ostream& err);

}  // namespace vexo
