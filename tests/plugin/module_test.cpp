// The plug-in file as the host sees it: one exported symbol, two savers
// registered in order with their tag tables.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <string>

#include "fake_host.h"

namespace {

std::map<std::string, std::string> tags(const IVxFactory* factory) {
  std::map<std::string, std::string> result;
  const IVxStaticDesc* desc = factory->StaticDesc();
  for (unsigned i = 0; i < desc->TagCount(); ++i) {
    VxTag tag{};
    EXPECT_EQ(desc->TagByIndex(i, &tag), VXR_OK);
    result[tag.name] = tag.value;
  }
  return result;
}

TEST(Module, ExportsOnlyTheEntryPoint) {
  FILE* pipe = popen("nm -D --defined-only --format=just-symbols '" GLTFIO_MODULE_PATH "'", "r");
  ASSERT_NE(pipe, nullptr);
  std::string symbols;
  char line[512];
  while (std::fgets(line, sizeof line, pipe)) symbols += line;
  ASSERT_EQ(pclose(pipe), 0) << symbols;
  EXPECT_EQ(symbols, "_IVxModule_Create\n");
}

TEST(Module, RegistersBothSaversWithTheirTags) {
  void* handle = dlopen(GLTFIO_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << dlerror();
  auto create = reinterpret_cast<VxModuleCreateFn>(dlsym(handle, VX_MODULE_ENTRY_NAME));
  ASSERT_NE(create, nullptr);

  FakeHost host;
  IVxModule* module = create(&host);
  ASSERT_NE(module, nullptr);
  using Tags = std::map<std::string, std::string>;
  const std::pair<std::string, Tags> expected[] = {
      {"gltf.bin", {{"saver.outClass", "scene2"}, {"saver.dosType", "glb"}, {"server.username", "glTF v2 .glb"},
                    {"server.logsubsystem", "io-status"}}},
      {"gltf.gltf", {{"saver.outClass", "scene2"}, {"saver.dosType", "gltf"}, {"server.username", "glTF v2 .gltf"},
                     {"server.logsubsystem", "io-status"}}}};
  // The savers come first; the load-options servers follow them.
  ASSERT_EQ(host.servers.size(), 5u);
  for (std::size_t i = 0; i < 2; ++i) {
    IVxFactory* factory = host.servers[i];
    EXPECT_EQ(factory->ServerName(), expected[i].first);
    EXPECT_EQ(tags(factory), expected[i].second);
    ASSERT_EQ(factory->InterfaceCount(), 2u);
    EXPECT_STREQ(factory->InterfaceName(0), "saver");
    EXPECT_STREQ(factory->InterfaceName(1), "staticDesc");
    IVxSaver* saver = factory->SpawnSaver();
    ASSERT_NE(saver, nullptr);
    saver->Release();
    EXPECT_EQ(factory->SpawnCommand(), nullptr);
    EXPECT_EQ(factory->SpawnConfigIO(), nullptr);
    EXPECT_EQ(factory->SpawnPersistVisitor(), nullptr);
  }
  const std::pair<std::string, std::string> loadOptionServers[] = {
      {"gltf.loadOptions", "command"}, {"loaderOptions.gltf", "configIO"}, {"loaderOptions.gltf.visitor", "persistVisitor"}};
  for (std::size_t i = 0; i < 3; ++i) {
    IVxFactory* factory = host.servers[2 + i];
    EXPECT_EQ(factory->ServerName(), loadOptionServers[i].first);
    EXPECT_EQ(factory->InterfaceName(0), loadOptionServers[i].second);
    EXPECT_EQ(factory->SpawnSaver(), nullptr);
  }
  module->Release();
  dlclose(handle);
}

}  // namespace
