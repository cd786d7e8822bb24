// The module-wide handle on the host that loaded the module.
#pragma once

#include "vexo/vx_module.h"
#include "vexo/vx_scene.h"
#include "vexo/vx_services.h"

namespace CVxHost {

// Set once by the module entry point; every wrapper reaches the host through it.
void set(IVxHost* host);
IVxHost* get();

}  // namespace CVxHost
