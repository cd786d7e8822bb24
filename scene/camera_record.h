// The glTF camera of a host camera item.
#pragma once

#include <cstdint>

#include "gltf/document.h"
#include "host/scene.h"

// Adds a perspective camera named after the item; its vertical field of
// view comes from the focal length and film height, its near plane from
// the clipping distance (docs/cameras.md).
std::uint32_t addCameraRecord(const CVxChannelRead& read, const CVxUser_Item& item, GltfDocument& document);
