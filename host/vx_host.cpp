#include "vx_host.h"

namespace {
IVxHost* gHost = nullptr;
}

namespace CVxHost {

void set(IVxHost* host) { gHost = host; }
IVxHost* get() { return gHost; }

bool registerLoaderOptions(const char* loader, IVxAttributes& options) {
  return gHost && VxOk(gHost->RegisterLoaderOptions(loader, &options));
}

}  // namespace CVxHost
