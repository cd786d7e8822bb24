// A plug-in for the host's tests. Its savers "gltf.bin" and "gltf.gltf"
// write one plain log line per call telling what the host handed them:
//   "<server> #<instance> save real=<0|1> dest=<path> selection=<a,b>"
// and "<server> #<instance> released". The user value "test.result" (an
// integer) is returned by real saves, "test.verifyResult" by verify passes;
// "test.noModule" set to 1 makes the entry point return no module, and
// "test.onlyGlb" set to 1 leaves "gltf.gltf" unregistered.
#include <string>

#include "vexo/vx_module.h"
#include "vexo/vx_scene.h"

namespace {

IVxHost* gHost = nullptr;

void logLine(const std::string& text) {
  IVxLogSubsystem* subsystem = nullptr;
  if (VxOk(gHost->LogService()->SubsystemLookup("io-status", &subsystem))) subsystem->PrintLine(text.c_str(), 0);
}

VxResult userResult(const char* key) {
  std::int32_t value = 0;
  return VxOk(gHost->UserValues()->GetInt(key, &value)) ? static_cast<VxResult>(value) : VXR_OK;
}

std::string selectionOf(IVxScene* scene) {
  std::string selection;
  for (unsigned i = 0; i < scene->SelectionCount("item"); ++i)
    selection += std::string(i ? "," : "") + scene->SelectionByIndex("item", i)->Name();
  return selection;
}

class RecordingSaver final : public IVxSaver {
 public:
  RecordingSaver(const char* server, int instance) : prefix_(std::string(server) + " #" + std::to_string(instance)) {}

  VxResult Save(IVxSaveTarget* target, const char* destination) override {
    bool real = target->IsRealSave();
    logLine(prefix_ + " save real=" + (real ? "1" : "0") + " dest=" + destination + " selection=" +
            selectionOf(target->Scene()));
    return userResult(real ? "test.result" : "test.verifyResult");
  }

  void Release() override {
    logLine(prefix_ + " released");
    delete this;
  }

 private:
  std::string prefix_;
};

class RecordingFactory final : public IVxFactory {
 public:
  explicit RecordingFactory(const char* name) : name_(name) {}
  const char* ServerName() const override { return name_; }
  unsigned InterfaceCount() const override { return 1; }
  const char* InterfaceName(unsigned index) const override { return index == 0 ? VX_INTERFACE_SAVER : nullptr; }
  const IVxStaticDesc* StaticDesc() const override { return nullptr; }
  IVxSaver* SpawnSaver() override { return new RecordingSaver(name_, ++spawned_); }
  IVxCommandServer* SpawnCommand() override { return nullptr; }
  IVxConfigIO* SpawnConfigIO() override { return nullptr; }
  IVxPersistVisitor* SpawnPersistVisitor() override { return nullptr; }

 private:
  const char* name_;
  int spawned_ = 0;
};

class RecordingModule final : public IVxModule {
 public:
  const char* Name() const override { return "recording"; }
  void Release() override { delete this; }

  RecordingFactory glb{"gltf.bin"};
  RecordingFactory gltf{"gltf.gltf"};
};

}  // namespace

extern "C" __attribute__((visibility("default"))) IVxModule* _IVxModule_Create(IVxHost* host) {
  gHost = host;
  if (userResult("test.noModule") == 1) return nullptr;
  auto* module = new RecordingModule;
  host->RegisterServer(&module->glb);
  if (userResult("test.onlyGlb") != 1) host->RegisterServer(&module->gltf);
  return module;
}
