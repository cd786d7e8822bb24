// gltfio_anim_export_bench: how long the plug-in takes to sample animated items.
// For each count N it generates a scene of N locators in chains of ten (each
// a child of the one before), every one keyed in position X, rotation Y and
// scale Z, and a timeline of S samples (fps S, from 0 to (S - 1) / S s). It
// saves the scene twice through the real plug-in, with animation and without,
// and prints both save times and their difference: the animation phase.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "loader/plugin_loader.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_host.h"
#include "sdk_impl/sdk_save_target.h"
#include "sdk_impl/sdk_scene.h"
#include "services/host_services.h"

namespace gltfio::bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

std::string animatedItem(int index, int depth, int chainLength) {
  const std::string name = "L" + std::to_string(index);
  std::string item = R"({"name": ")" + name + R"(", "type": "locator", "position": [1, 0, 0], "keys": {"setup": {)"
                     R"("Position.pos.X": [[0, 1], [1, 2]], "Rotation.rot.Y": [[0, 0], [1, 3]], )"
                     R"("Scale.scl.Z": [[0, 1], [1, 2]]}})";
  if (depth + 1 < chainLength) item += R"(, "children": [)" + animatedItem(index + 1, depth + 1, chainLength) + "]";
  return item + "}";
}

std::string animatedScene(int items, int samples) {
  constexpr int kChain = 10;
  std::string text = R"({"scene": {"channels": {"currentS": 0, "currentE": )" +
                     std::to_string((samples - 1) / static_cast<double>(samples)) + R"(, "fps": )" +
                     std::to_string(samples) + R"(}}, "items": [)";
  for (int i = 0; i < items; i += kChain) text += (i ? ", " : "") + animatedItem(i, 0, std::min(kChain, items - i));
  return text + "]}";
}

// The real save's time in ms, or a negative number when it failed.
double timeSave(const std::string& text, bool animation, const fs::path& destination) {
  vexo::Scene scene;
  std::string error;
  if (!vexo::readSceneText(text, "bench.json", scene, error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return -1;
  }
  vexo::HostServices services(nullptr);
  services.userValues.set("sceneio.gltf.save.exportType", "0");
  services.userValues.set("sceneio.gltf.save.animation", animation ? "1" : "0");
  vexo::SdkScene sdkScene(scene);
  vexo::SdkHost host(services);
  std::unique_ptr<vexo::LoadedPlugin> plugin = vexo::LoadedPlugin::load(vexo::pluginPath(""), host, error);
  IVxFactory* factory = plugin ? host.findServer("gltf.bin") : nullptr;
  IVxSaver* saver = factory ? factory->SpawnSaver() : nullptr;
  if (!saver) {
    std::fprintf(stderr, "cannot load the plug-in: %s\n", error.c_str());
    return -1;
  }
  vexo::SaveTarget verify(sdkScene, false), real(sdkScene, true);
  double ms = -1;
  if (VxOk(saver->Save(&verify, destination.c_str()))) {
    const Clock::time_point start = Clock::now();
    if (VxOk(saver->Save(&real, destination.c_str()))) ms = msSince(start);
  }
  saver->Release();
  return ms;
}

int run(int argc, char** argv) {
  CLI::App app("Times the sampling of animated items through the real plug-in.");
  std::vector<int> counts = {100, 1000};
  int samples = 1000;
  app.add_option("counts", counts, "animated item counts");
  app.add_option("--samples", samples, "samples per item")->check(CLI::Range(1, 1000000));
  CLI11_PARSE(app, argc, argv);

  const fs::path folder = fs::temp_directory_path() / "gltfio-anim-bench";
  fs::create_directories(folder);
  std::printf("| items | samples | save with animation | save without | animation phase | per item and sample |\n");
  std::printf("|---:|---:|---:|---:|---:|---:|\n");
  for (int items : counts) {
    const std::string text = animatedScene(items, samples);
    const double with = timeSave(text, true, folder / "anim.glb");
    const double without = timeSave(text, false, folder / "still.glb");
    if (with < 0 || without < 0) return 1;
    const double phase = with - without;
    std::printf("| %d | %d | %.1f ms | %.1f ms | %.1f ms | %.0f ns |\n", items, samples, with, without, phase,
                phase * 1e6 / (static_cast<double>(items) * samples));
  }
  fs::remove_all(folder);
  return 0;
}

}  // namespace
}  // namespace gltfio::bench

int main(int argc, char** argv) { return gltfio::bench::run(argc, argv); }
