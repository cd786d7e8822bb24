// The module entry point: registers the module's servers with the host.
#include <memory>

#include "gltf_saver.h"
#include "load_options.h"
#include "host/server.h"
#include "host/vx_host.h"

namespace {

using Tags = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kModuleName = "gltfio";
constexpr const char* kLogSubsystem = "io-status";

struct SaverDescription {
  const char* server;
  const char* dosType;
  const char* userName;
};

CVxTagTable saverTags(const SaverDescription& saver) {
  return CVxTagTable({{VX_TAG_SAVER_OUTCLASS, "scene2"},
                      {VX_TAG_SAVER_DOSTYPE, saver.dosType},
                      {VX_TAG_SERVER_USERNAME, saver.userName},
                      {VX_TAG_SERVER_LOGSUBSYSTEM, kLogSubsystem}});
}

}  // namespace

// No exception may leave the module: a failure to build it (out of memory)
// returns no module, which the host reports.
extern "C" __attribute__((visibility("default"))) IVxModule* _IVxModule_Create(IVxHost* host) try {
  if (!host) return nullptr;
  CVxHost::set(host);

  static const SaverDescription kGlb{"gltf.bin", "glb", "glTF v2 .glb"};
  static const SaverDescription kGltf{"gltf.gltf", "gltf", "glTF v2 .gltf"};

  auto module = std::make_unique<CVxModule>(kModuleName);
  module->addServer(host, std::make_unique<CVxSaverFactory<GltfSaver>>(kGlb.server, saverTags(kGlb)));
  module->addServer(host, std::make_unique<CVxSaverFactory<GltfSaverGLTF>>(kGltf.server, saverTags(kGltf)));
  module->addServer(host, std::make_unique<CVxCommandFactory<LoadOptionsCmd>>(
                              loadopts::kCommandServer, CVxTagTable(Tags{{VX_TAG_SERVER_USERNAME, "glTF Load Options"}})));
  module->addServer(host, std::make_unique<CVxConfigIOFactory<LoadOptionsIO>>(loadopts::kConfigServer, CVxTagTable(Tags{})));
  module->addServer(host, std::make_unique<CVxPersistVisitorFactory<LoadPersistOptionsVisitor>>(
                              loadopts::kVisitorServer, CVxTagTable(Tags{})));
  return module.release();
} catch (...) {
  return nullptr;
}
