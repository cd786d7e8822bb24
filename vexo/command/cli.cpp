#include "command/cli.h"

#include <CLI/CLI.hpp>

#include "command/save_command.h"

namespace vexo {

int runCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CLI::App app("vexo: a headless Vexo host that runs plug-in scene savers", "vexo");
  app.require_subcommand(1);

  SaveRequest request;
  CLI::App* save = app.add_subcommand("save", "Save a scene file through the plug-in's glTF saver");
  save->add_option("scene", request.scenePath, "Scene file (JSON) to load")->required();
  save->add_option("destination", request.destination, "File to write")->required();
  save->add_option("--format", request.format, "glb or gltf (default: by the destination's extension)")
      ->check(CLI::IsMember({"glb", "gltf"}));
  save->add_option("--set", request.settings, "Set a host user value, KEY=VALUE (repeatable)")
      ->allow_extra_args(false);
  save->add_option("--select", request.select, "Add an item, by id or name, to the selection (repeatable)")
      ->allow_extra_args(false);
  save->add_option("--plugin", request.pluginPath, "Plug-in file (default: $VEXO_PLUGIN_PATH, else gltfio.vx beside vexo)");
  save->add_flag("--verify-only", request.verifyOnly, "Run only the verify pass; write nothing");

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e, out, err);
  } catch (const CLI::ParseError& e) {
    app.exit(e, out, err);
    return kExitUsage;
  }
  return runSave(request, err);
}

}  // namespace vexo
