// The vertex maps a mesh export registers, chosen and logged in a fixed order.
#pragma once

#include <vector>

#include "host/mesh.h"
#include "plugin/gltf_log_msg.h"

struct MeshMaps {
  VxMapID normal = VX_MAP_NONE;       // the first "NORM" map, when its identifier is valid
  std::vector<VxMapID> colours;       // "RGB " maps, then "RGBA" maps
  std::vector<bool> colourHasAlpha;   // per colour map
  std::vector<VxMapID> uvs;           // "TXUV" maps sorted by name: set n is uvs[n]
  std::vector<VxMapID> tangentBases;  // "TBAS" maps, only with tangents on
};

MeshMaps chooseMeshMaps(const CVxMesh& mesh, bool tangents, GltfLogMsg& log);
