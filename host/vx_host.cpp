#include "vx_host.h"

namespace {
IVxHost* gHost = nullptr;
}

namespace CVxHost {

void set(IVxHost* host) { gHost = host; }
IVxHost* get() { return gHost; }

}  // namespace CVxHost
