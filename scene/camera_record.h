// The glTF camera of a host camera item.
#pragma once

#include <cstdint>

#include "core/export_context.h"

// Adds a perspective camera named after the item: its vertical field of view
// comes from the focal length ("focalLen") and film height ("apertureY"), its
// near plane from "clipNear"; docs/export.md gives the defaults and the
// ranges the values are kept in.
std::uint32_t addCameraRecord(ExportContext& context, const CVxUser_Item& item);
