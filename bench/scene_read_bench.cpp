// gltfio_scene_bench: how the scene-file reader and the host's evaluation
// grow with the size of a scene. For each size N it generates, as one line of
// JSON (as most tools write it):
//   locators   N locators;
//   links      2N locators and N links between channels of different ones;
//   chain      N locators, each placed by the next one's "parentMatrix" link;
//   slashes    a selection entry with N slashes ("a/a/.../a"), which names no item;
// and times reading the text into a scene, then reading every locator's
// world, local and parent world matrix through the SDK as an exporter does.
// Time per item that stays flat as N grows is linear cost.
//
// With --files it times reading the given scene files instead (such as the
// grid scenes gltfio_bench writes with --keep): the median of --repeat reads
// of each, and the throughput. --general reads every mesh through the
// general reader, for the comparison.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_locator.h"

namespace gltfio::bench {
namespace {

using Clock = std::chrono::steady_clock;
using vexo::Scene;

double msSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

std::string locator(const std::string& name, int x) {
  return R"({"name": ")" + name + R"(", "type": "locator", "position": [)" + std::to_string(x) + ", 0, 1]}";
}

std::string scene(const std::string& items, const std::string& tail = {}) {
  return R"({"items": [)" + items + "]" + tail + "}";
}

std::string locators(int n) {
  std::string items;
  for (int i = 0; i < n; ++i) items += (i ? ", " : "") + locator("L" + std::to_string(i), i);
  return scene(items);
}

std::string links(int n) {
  std::string items, list;
  for (int i = 0; i < 2 * n; ++i) items += (i ? ", " : "") + locator("L" + std::to_string(i), i);
  for (int i = 0; i < n; ++i) {
    list += std::string(i ? ", " : "") + R"({"from": "L)" + std::to_string(2 * i) + R"(/Position.pos.Y", "to": "L)" +
            std::to_string(2 * i + 1) + R"(/Position.pos.Z"})";
  }
  return scene(items, R"(, "links": [)" + list + "]");
}

std::string chain(int n) {
  std::string items, list;
  for (int i = 0; i < n; ++i) items += (i ? ", " : "") + locator("L" + std::to_string(i), 1);
  for (int i = 1; i < n; ++i) {
    list += std::string(i > 1 ? ", " : "") + R"({"from": "L)" + std::to_string(i - 1) + R"(.worldMatrix", "to": "L)" +
            std::to_string(i) + R"(.parentMatrix"})";
  }
  return scene(items, R"(, "links": [)" + list + "]");
}

std::string slashes(int n) {
  std::string ref = "a";
  for (int i = 0; i < n; ++i) ref += "/a";
  return scene(locator("a", 0) + ", " + locator("a/a", 0), R"(, "selection": [")" + ref + R"("])");
}

struct Timing {
  double readMs = 0, evaluateMs = 0;
  std::size_t bytes = 0, locators = 0;
  std::string problem;
};

Timing run(const std::string& text) {
  Timing t;
  t.bytes = text.size();
  Scene scene;
  std::string error;
  const Clock::time_point start = Clock::now();
  // The slash case names no item on purpose: its refusal is what is timed.
  if (!vexo::readSceneText(text, "bench.json", scene, error) && error.find("cannot select") == std::string::npos)
    t.problem = error;
  t.readMs = msSince(start);

  vexo::SdkScene sdk(scene);
  IVxChannelRead* read = nullptr;
  sdk.ChannelRead("edit", 0.0, &read);
  const Clock::time_point evaluate = Clock::now();
  double m[16];
  for (vexo::Item* item : scene.itemsOfType(scene.types().find("locator"))) {
    IVxLocator* view = nullptr;
    sdk.LocatorService()->LocatorLookup(sdk.wrap(item), &view);
    if (VxFailed(view->WorldMatrix(read, m)) || VxFailed(view->LocalMatrix(read, m)) ||
        VxFailed(view->ParentWorldMatrix(read, m)))
      t.problem = "a matrix of " + item->name() + " failed";
    ++t.locators;
  }
  t.evaluateMs = msSince(evaluate);
  read->Release();
  return t;
}

// Reads `path` `repeat` times; the median read in ms, or a negative number when it does not read.
double timeFile(const std::string& path, int repeat, bool general, std::string& problem) {
  std::vector<double> times;
  for (int i = 0; i < repeat; ++i) {
    Scene scene;
    std::string error;
    const Clock::time_point start = Clock::now();
    bool read = false;
    if (general) {
      std::ifstream in(path, std::ios::binary);
      std::ostringstream text;
      text << in.rdbuf();
      read = in && vexo::readSceneText(text.str(), path, scene, error, false);
    } else {
      read = vexo::readSceneFile(path, scene, error);
    }
    times.push_back(msSince(start));
    if (!read) {
      problem = error.empty() ? path + ": cannot read" : error;
      return -1;
    }
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

int timeFiles(const std::vector<std::string>& files, int repeat, bool general) {
  std::printf("%-40s %10s %10s %10s\n", "file", "MiB", "read ms", "MiB/s");
  int status = 0;
  for (const std::string& path : files) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    const double mib = static_cast<double>(in.tellg()) / (1024.0 * 1024.0);
    std::string problem;
    const double ms = timeFile(path, repeat, general, problem);
    if (ms < 0) {
      std::fprintf(stderr, "%s\n", problem.c_str());
      status = 1;
      continue;
    }
    std::printf("%-40s %10.1f %10.1f %10.1f\n", path.c_str(), mib, ms, mib / (ms / 1000.0));
  }
  return status;
}

}  // namespace
}  // namespace gltfio::bench

int main(int argc, char** argv) {
  using namespace gltfio::bench;
  CLI::App app{"Times the scene-file reader and the host's evaluation for growing scenes"};
  std::vector<int> sizes = {2500, 5000, 10000, 20000};
  std::vector<std::string> cases = {"locators", "links", "chain", "slashes"};
  app.add_option("--sizes", sizes, "Values of N")->capture_default_str();
  app.add_option("--cases", cases, "Which scenes: locators, links, chain, slashes")->capture_default_str();
  std::vector<std::string> files;
  int repeat = 5;
  bool general = false;
  app.add_option("--files", files, "Time reading these scene files instead");
  app.add_option("--repeat", repeat, "Reads of each file; the median is shown")->capture_default_str()->check(
      CLI::PositiveNumber);
  app.add_flag("--general", general, "Read meshes through the general reader only");
  CLI11_PARSE(app, argc, argv);
  if (!files.empty()) return timeFiles(files, repeat, general);

  const struct {
    const char* name;
    std::function<std::string(int)> make;
  } generators[] = {{"locators", locators}, {"links", links}, {"chain", chain}, {"slashes", slashes}};

  std::printf("%-9s %7s %11s %10s %10s %12s\n", "case", "N", "bytes", "read ms", "eval ms", "us per N");
  int status = 0;
  for (const std::string& name : cases) {
    for (const auto& generator : generators) {
      if (name != generator.name) continue;
      for (int n : sizes) {
        const Timing t = run(generator.make(n));
        std::printf("%-9s %7d %11zu %10.1f %10.1f %12.2f\n", generator.name, n, t.bytes, t.readMs, t.evaluateMs,
                    1000.0 * (t.readMs + t.evaluateMs) / n);
        if (!t.problem.empty()) {
          std::fprintf(stderr, "%s %d: %s\n", generator.name, n, t.problem.c_str());
          status = 1;
        }
      }
    }
  }
  return status;
}
