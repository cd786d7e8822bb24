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
  const std::string command = "nm -D --defined-only '" GLTFIO_MODULE_PATH "'";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string symbols;
  char line[512];
  while (std::fgets(line, sizeof line, pipe)) symbols += line;
  ASSERT_EQ(pclose(pipe), 0) << symbols;
  // Each line is "ADDRESS TYPE NAME"; only the entry point may be there.
  std::string names;
  std::size_t start = 0;
  while (start < symbols.size()) {
    std::size_t end = symbols.find('\n', start);
    if (end == std::string::npos) end = symbols.size();
    const std::string row = symbols.substr(start, end - start);
    const std::size_t space = row.rfind(' ');
    if (!row.empty()) names += row.substr(space + 1) + ";";
    start = end + 1;
  }
  EXPECT_EQ(names, "_IVxModule_Create;");
}

TEST(Module, RegistersBothSaversWithTheirTags) {
  void* handle = dlopen(GLTFIO_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << dlerror();
  auto create = reinterpret_cast<VxModuleCreateFn>(dlsym(handle, VX_MODULE_ENTRY_NAME));
  ASSERT_NE(create, nullptr);

  FakeHost host;
  IVxModule* module = create(&host);
  ASSERT_NE(module, nullptr);
  ASSERT_EQ(host.servers.size(), 2u);
  EXPECT_STREQ(host.servers[0]->ServerName(), "gltf.bin");
  EXPECT_STREQ(host.servers[1]->ServerName(), "gltf.gltf");

  const std::map<std::string, std::string> glb = tags(host.servers[0]);
  EXPECT_EQ(glb.at("saver.outClass"), "scene2");
  EXPECT_EQ(glb.at("saver.dosType"), "glb");
  EXPECT_EQ(glb.at("server.username"), "glTF v2 .glb");
  EXPECT_EQ(glb.at("server.logsubsystem"), "io-status");
  const std::map<std::string, std::string> gltf = tags(host.servers[1]);
  EXPECT_EQ(gltf.at("saver.dosType"), "gltf");
  EXPECT_EQ(gltf.at("server.username"), "glTF v2 .gltf");

  for (IVxFactory* factory : host.servers) {
    ASSERT_EQ(factory->InterfaceCount(), 2u);
    EXPECT_STREQ(factory->InterfaceName(0), "saver");
    EXPECT_STREQ(factory->InterfaceName(1), "staticDesc");
    IVxSaver* saver = factory->SpawnSaver();
    ASSERT_NE(saver, nullptr);
    saver->Release();
  }
  module->Release();
  dlclose(handle);
}

}  // namespace
