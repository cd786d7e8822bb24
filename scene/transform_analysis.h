// Reads a locator's transform stack and links into a TransformAnalysis.
#pragma once

#include "core/export_context.h"
#include "host/locator.h"

// Classifies the item's stack and logs its driven channels ("   Driven
// channel:%s", "   Driven xform channel:%s.%s").
void analyseTransforms(ExportContext& context, const CVxLocator& locator, const CVxUser_Item& item,
                       TransformAnalysis& analysis);
