// The tag the host puts in front of an action clip's name in exported files,
// asked of the host command "item.exportTags".
#pragma once

#include <string>

#include "core/export_context.h"

// The tag text, empty on any failure (each failure is logged).
std::string clipNameTag(ExportContext& context, const CVxUser_Item& action);
