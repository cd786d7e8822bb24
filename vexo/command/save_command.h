// `vexo save`: load a scene file and the plug-in, run the verify pass and the real save.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

class Scene;

enum ExitCode : int {
  kExitOk = 0,
  kExitSaveFailed = 1,  // the saver returned a failure, or vexo ran out of a resource (memory)
  kExitUsage = 2,       // bad arguments, scene file, selection or plug-in
};

struct SaveRequest {
  std::string scenePath;
  std::string destination;
  std::string format;                 // "glb", "gltf", or empty to go by the destination
  std::vector<std::string> settings;  // "KEY=VALUE" user values
  std::vector<std::string> select;    // items added to the scene file's selection, in order
  std::string pluginPath;             // empty: see pluginPath()
  bool verifyOnly = false;
};

// The saver server for a format: "gltf.gltf" for "gltf", or for no format
// and a destination ending in ".gltf"; "gltf.bin" otherwise.
const char* saverName(std::string_view format, std::string_view destination);

// Runs one save. The event log, the command's own errors and hints go to
// `err`; the files a successful save wrote, with their sizes, to `out`.
int runSave(const SaveRequest& request, std::ostream& out, std::ostream& err);

// Fills a new scene; false with a one-line `error` when it cannot.
using SceneSource = std::function<bool(Scene& scene, std::string& error)>;

// runSave with the scene from `source` in place of the request's scene file
// (whose path is then unused); a scene that cannot be had exits 2.
int runSaveFrom(const SaveRequest& request, const SceneSource& source, std::ostream& out, std::ostream& err);

}  // namespace vexo
