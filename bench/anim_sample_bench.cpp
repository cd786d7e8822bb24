// gltfio_anim_bench: the host's cost of sampling animation as an exporter
// does. It builds in memory ITEMS locators hanging in chains of DEPTH, each
// with keys on position, rotation and scale, then for each of SAMPLES times
// moves the scene time, makes an "edit" reader at that time and reads every
// item's world and parent world matrix through the SDK.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_locator.h"

namespace {

using Clock = std::chrono::steady_clock;
using namespace vexo;

KeyCurve curve(double phase, double scale, int keys) {
  std::vector<Key> list;
  for (int k = 0; k < keys; ++k) list.push_back({k * 10.0 / (keys - 1), scale * ((k + phase) * 0.37 - (k % 3)), {}});
  KeyCurve c;
  c.assign(std::move(list), nullptr);
  return c;
}

void key(Scene& scene, Item& locator, MainTransform which, const char* channel, KeyCurve keys) {
  Item* transform = locator.mainTransform(which);
  const int index = scene.types().findChannel(transform->typeCode(), channel);
  transform->setKeys(static_cast<std::size_t>(index), kSetupAction, std::move(keys));
}

}  // namespace

int main(int argc, char** argv) {
  int items = 1000, depth = 10, samples = 1000, keys = 11;
  CLI::App app{"Times sampling every world matrix of an animated scene through the host's SDK"};
  app.add_option("--items", items, "Animated locators")->capture_default_str();
  app.add_option("--depth", depth, "Length of each parent chain")->capture_default_str();
  app.add_option("--samples", samples, "Sample times, spread over 0 to 10 s")->capture_default_str();
  app.add_option("--keys", keys, "Keys per animated channel")->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  if (items < 1 || depth < 1 || samples < 1 || keys < 2) {
    std::fprintf(stderr, "items, depth and samples must be at least 1, keys at least 2\n");
    return 2;
  }

  Scene scene;
  const TypeCode locatorType = scene.types().find("locator");
  std::vector<Item*> locators;
  for (int i = 0; i < items; ++i) {
    Item* parent = i % depth ? locators.back() : nullptr;
    Item* item = scene.addItem(locatorType, "L" + std::to_string(i), {}, parent);
    key(scene, *item, MainTransform::Position, "pos.X", curve(i, 0.1, keys));
    key(scene, *item, MainTransform::Rotation, "rot.Y", curve(i + 1, 0.2, keys));
    key(scene, *item, MainTransform::Scale, "scl.Z", curve(i + 2, 0.05, keys));
    locators.push_back(item);
  }

  SdkScene sdk(scene);
  std::vector<IVxLocator*> views;
  for (Item* item : locators) {
    IVxLocator* view = nullptr;
    sdk.LocatorService()->LocatorLookup(sdk.wrap(item), &view);
    views.push_back(view);
  }

  double checksum = 0.0, m[16];
  const auto start = Clock::now();
  for (int s = 0; s < samples; ++s) {
    sdk.SetTime(samples > 1 ? s * 10.0 / (samples - 1) : 0.0);
    IVxChannelRead* read = nullptr;
    sdk.ChannelRead("edit", sdk.Time(), &read);
    for (IVxLocator* view : views) {
      if (VxOk(view->WorldMatrix(read, m))) checksum += m[12];
      if (VxOk(view->ParentWorldMatrix(read, m))) checksum += m[13];
    }
    read->Release();
  }
  const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
  std::printf("items %d, chains of %d, %d keys per channel, %d samples\n", items, depth, keys, samples);
  std::printf("total %.1f ms, %.1f us per sample, %.0f ns per world + parent world read (checksum %.6g)\n", ms,
              ms * 1000.0 / samples, ms * 1e6 / (static_cast<double>(samples) * items), checksum);
  return 0;
}
