// The vertex maps a mesh export registers, chosen and logged in a fixed order.
#pragma once

#include <string>
#include <vector>

#include "core/gltf_log_msg.h"
#include "host/mesh.h"
#include "mesh_builder.h"

struct MeshMaps {
  VxMapID normal = VX_MAP_NONE;       // the first "NORM" map, when its identifier is valid
  std::vector<VxMapID> colours;       // "RGB " maps, then "RGBA" maps
  std::vector<bool> colourHasAlpha;   // per colour map
  std::vector<VxMapID> uvs;           // "TXUV" maps sorted by name: set n is uvs[n]
  std::vector<std::string> uvNames;   // the name of each of uvs
  std::vector<VxMapID> tangentBases;  // "TBAS" maps, only with tangents on

  CornerLayout layout() const { return {colours.size(), uvs.size(), tangentBases.size()}; }
};

// A map whose values per element differ from what its kind holds (3 for
// normals, 3 or 4 for colours, 2 for texture coordinates, 6 for tangent
// bases) is left out with a counted error naming the item.
MeshMaps chooseMeshMaps(const CVxMesh& mesh, const std::string& itemName, bool tangents, GltfLogMsg& log);
