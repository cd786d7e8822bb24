// libFuzzer target: the input is a settings byte followed by a scene file.
// A scene that reads is saved through the loaded plug-in, verify pass then
// real save, as `vexo save` does, into a private temporary folder.
//
// The settings byte, bit by bit:
//   0     saver: 0 "gltf.bin" (a ".glb"), 1 "gltf.gltf" (a ".gltf" and its ".bin")
//   1-2   export type: 0 whole scene, 1 selection, 2 item list, 3 whole scene
//   3     32-bit indices
//   4     tangents and bitangents
//   5     animation off
//   6-7   exported actions: 0 timeline, 1 every action, 2 the active action, 3 timeline
// Whole-scene exports come first so that scenes without a selection export something.


#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "engine/scene.h"
#include "loader/plugin_loader.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_host.h"
#include "sdk_impl/sdk_save_target.h"
#include "sdk_impl/sdk_scene.h"
#include "services/host_services.h"

namespace {

struct Settings {
  const char* saver;
  const char* fileName;
  int exportType;
  int indices32;
  int tangents;
  int animation;
  int actionType;
};

Settings decodeSettings(std::uint8_t bits) {
  static const int kExportTypes[] = {0, 1, 2, 0};
  static const int kActionTypes[] = {0, 1, 2, 0};
  const bool separate = bits & 1;
  return Settings{separate ? "gltf.gltf" : "gltf.bin",
                  separate ? "out.gltf" : "out.glb",
                  kExportTypes[(bits >> 1) & 3],
                  (bits >> 3) & 1,
                  (bits >> 4) & 1,
                  ((bits >> 5) & 1) ? 0 : 1,
                  kActionTypes[(bits >> 6) & 3]};
}

// The host and the module live for the whole run: the module keeps the host
// it was created with, and unloading an instrumented library mid-run would
// leave the fuzzer's coverage counters pointing at unmapped memory.
struct Harness {
  vexo::HostServices services{nullptr};
  vexo::SdkHost host{services};
  std::unique_ptr<vexo::LoadedPlugin> plugin;
  std::filesystem::path folder;

  void resetServices(const Settings& settings) {
    // Fresh log and messages each run, so memory does not grow with the run count.
    services.log = vexo::EventLog(nullptr);
    services.messages = vexo::Messages();
    services.userValues = vexo::UserValues();
    vexo::UserValues& values = services.userValues;
    values.set("sceneio.gltf.save.exportType", std::to_string(settings.exportType));
    values.set("sceneio.gltf.save.indicesExport", std::to_string(settings.indices32));
    values.set("sceneio.gltf.save.tangentsBitangents", std::to_string(settings.tangents));
    values.set("sceneio.gltf.save.animation", std::to_string(settings.animation));
    values.set("sceneio.gltf.save.exportActionType", std::to_string(settings.actionType));
  }

  void emptyFolder() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
      std::filesystem::remove_all(entry.path(), ignored);
  }
};

Harness* harness = nullptr;

[[noreturn]] void fail(const std::string& message) {
  std::fprintf(stderr, "save_fuzzer: %s\n", message.c_str());
  std::exit(2);
}

}  // namespace

// Defaults for running the fuzzer binary directly; UBSAN_OPTIONS adds to them.
extern "C" const char* __ubsan_default_options() {
  return "print_stacktrace=1:halt_on_error=1:suppressions=" GLTFIO_UBSAN_SUPPRESSIONS;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  harness = new Harness;
  std::string folder = (std::filesystem::temp_directory_path() / "gltfio-fuzz-XXXXXX").string();
  if (!mkdtemp(folder.data())) fail("cannot create a temporary folder");
  harness->folder = folder;
  std::string error;
  const std::string path = vexo::pluginPath("");
  harness->plugin = vexo::LoadedPlugin::load(path, harness->host, error);
  if (!harness->plugin) fail(error);
  for (const char* saver : {"gltf.bin", "gltf.gltf"})
    if (!harness->host.findServer(saver)) fail("plug-in \"" + path + "\" has no saver \"" + saver + "\"");
  // The temporary folder goes when the run ends, whichever way it ends normally.
  std::atexit([] {
    std::error_code ignored;
    std::filesystem::remove_all(harness->folder, ignored);
  });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Settings settings = decodeSettings(data[0]);
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);

  vexo::Scene scene;
  std::string error;
  if (!vexo::readSceneText(text, "fuzz.json", scene, error)) return 0;

  harness->resetServices(settings);
  IVxFactory* factory = harness->host.findServer(settings.saver);
  IVxSaver* saver = factory->SpawnSaver();
  if (!saver) fail(std::string("saver \"") + settings.saver + "\" could not be created");
  {
    vexo::SdkScene sdkScene(scene);
    const std::string destination = (harness->folder / settings.fileName).string();
    vexo::SaveTarget verify(sdkScene, false);
    VxResult result = saver->Save(&verify, destination.c_str());
    if (VxOk(result)) {
      vexo::SaveTarget real(sdkScene, true);
      saver->Save(&real, destination.c_str());
    }
    // The saver may hold items of this scene until it is released.
    saver->Release();
  }
  harness->emptyFolder();
  return 0;
}
