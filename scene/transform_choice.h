// Sets a node's matrix from its item's world or local placement.
#pragma once

#include <cstdint>

#include "core/export_context.h"

// Analyses the item's transform stack, keeps the analysis and the placement
// rule for the node in context.nodeTransforms, and sets the node's matrix.
// Without a locator view the node keeps the identity ("   !!! No locator !!!").
void chooseTransform(ExportContext& context, const CVxUser_Item& item, std::uint32_t node, std::uint32_t parentNode);
