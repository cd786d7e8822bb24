// The module-wide handle on the host that loaded the module.
#pragma once

#include "vexo/vx_module.h"
#include "vexo/vx_scene.h"
#include "vexo/vx_services.h"

namespace CVxHost {

// Set once by the module entry point; every wrapper reaches the host through it.
void set(IVxHost* host);
IVxHost* get();

// Registers a loader's option set with the host; false without a host or when it refuses.
bool registerLoaderOptions(const char* loader, IVxAttributes& options);

}  // namespace CVxHost
