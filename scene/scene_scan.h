// The scan that chooses the export's root items.
#pragma once

#include "core/export_context.h"

// Fills context.rootItems by the export type and logs what it finds.
void scanScene(ExportContext& context);
