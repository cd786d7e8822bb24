#include "command/cli.h"

#include <csignal>
#include <exception>
#include <new>

#include <CLI/CLI.hpp>

#include "command/convert_command.h"
#include "command/inspect_command.h"
#include "command/load_options_command.h"
#include "command/preview_command.h"
#include "command/save_command.h"

namespace vexo {
namespace {

int parseAndRun(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
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

  InspectRequest inspectRequest;
  double time = 0.0;
  CLI::App* inspect = app.add_subcommand("inspect", "Print the scene's items and world matrices as JSON");
  inspect->add_option("scene", inspectRequest.scenePath, "Scene file (JSON) to load")->required();
  inspect->add_option("--action", inspectRequest.action, "Action to evaluate (default: edit)");
  CLI::Option* timeOption = inspect->add_option("--time", time, "Time to evaluate at (default: the scene's time)");

  PreviewRequest previewRequest;
  CLI::App* preview = app.add_subcommand("preview", "Render a .glb or .gltf file to a PNG picture");
  preview->add_option("file", previewRequest.file, "The .glb or .gltf file to render")->required();
  preview->add_option("picture", previewRequest.output, "The PNG file to write")->required();
  preview->add_option("--size", previewRequest.size, "Picture size WIDTHxHEIGHT (default: 800x600)");
  preview->add_option("--time", previewRequest.time, "Seconds to pose every animation at (default: 0)");

  LoadOptionsRequest loadOptionsRequest;
  CLI::App* loadOptions =
      app.add_subcommand("load-options", "Print the glTF loader's options, or change them for later runs");
  loadOptions->add_option("--set", loadOptionsRequest.settings, "Set an option, NAME=VALUE (repeatable)")
      ->allow_extra_args(false);
  loadOptions->add_option("--plugin", loadOptionsRequest.pluginPath,
                          "Plug-in file (default: $VEXO_PLUGIN_PATH, else gltfio.vx beside vexo)");

  ConvertRequest convertRequest;
  CLI::App* convert = app.add_subcommand("convert", "Load a .gltf or .glb with the host's loader and save it through the plug-in");
  convert->add_option("input", convertRequest.input, "The .gltf or .glb file to load")->required();
  convert->add_option("destination", convertRequest.destination, "File to write")->required();
  convert->add_option("--format", convertRequest.format, "glb or gltf (default: by the destination's extension)")
      ->check(CLI::IsMember({"glb", "gltf"}));
  convert->add_option("--set", convertRequest.settings, "Set a host user value, KEY=VALUE (repeatable)")
      ->allow_extra_args(false);
  convert->add_option("--plugin", convertRequest.pluginPath, "Plug-in file (default: $VEXO_PLUGIN_PATH, else gltfio.vx beside vexo)");

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e, out, err);
  } catch (const CLI::ParseError& e) {
    const char* usage = save->parsed()      ? "vexo save --help"
                        : inspect->parsed() ? "vexo inspect --help"
                        : preview->parsed() ? "vexo preview --help"
                        : loadOptions->parsed() ? "vexo load-options --help"
                        : convert->parsed() ? "vexo convert --help"
                                            : "vexo --help";
    err << "vexo: " << e.what() << " (see " << usage << ")\n";
    return kExitUsage;
  }
  if (inspect->parsed()) {
    if (timeOption->count() > 0) inspectRequest.time = time;
    return runInspect(inspectRequest, out, err);
  }
  if (preview->parsed()) return runPreview(previewRequest, out, err);
  if (loadOptions->parsed()) return runLoadOptions(loadOptionsRequest, out, err);
  if (convert->parsed()) return runConvert(convertRequest, out, err);
  return runSave(request, out, err);
}

}  // namespace

int runCli(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  try {
    return parseAndRun(argc, argv, out, err);
  } catch (const std::bad_alloc&) {
    err << "vexo: out of memory\n";
  } catch (const std::exception& e) {
    err << "vexo: " << e.what() << '\n';
  } catch (...) {
    err << "vexo: unexpected failure\n";
  }
  return kExitSaveFailed;
}

void ignoreFileSizeSignal() {
  // Past a file-size limit, writes then fail with EFBIG and the save fails
  // like one on a full disk, cleaning up, instead of the process being killed.
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace vexo
