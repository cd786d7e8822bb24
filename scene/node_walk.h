// The node walk: turns the root items and (by export type) their children
// into glTF nodes, depth first, with meshes, cameras and transforms.
#pragma once

#include "core/export_context.h"

// Walks context.rootItems; VXR_FAILED when an item could not be taken from
// the walk ("Failed to set item").
VxResult walkNodes(ExportContext& context);
