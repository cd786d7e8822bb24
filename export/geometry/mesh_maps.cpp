#include "mesh_maps.h"

#include <algorithm>

namespace {

// True when the map holds `expected` values per element; logs the error otherwise.
bool fits(const CVxMesh& mesh, const CVxMapEntry& map, unsigned expected, const std::string& itemName,
          GltfLogMsg& log) {
  const unsigned dimension = mesh.mapDimension(map.id);
  if (dimension == expected) return true;
  log.error("   Vertex map:%s of mesh:%s holds %u values per element instead of %u; left out", map.name.c_str(),
            itemName.c_str(), dimension, expected);
  return false;
}

}  // namespace

MeshMaps chooseMeshMaps(const CVxMesh& mesh, const std::string& itemName, bool tangents, GltfLogMsg& log) {
  MeshMaps maps;

  const std::vector<CVxMapEntry> normals = mesh.maps(VX_VMAP_NORMAL);
  if (normals.empty()) {
    log.info("   adding calculated normals (normals mesh map not found)");
  } else {
    const CVxMapEntry& normal = normals.front();
    log.info("   normal vmap:%s", normal.name.c_str());
    if (normal.id != VX_MAP_NONE && fits(mesh, normal, 3, itemName, log)) maps.normal = normal.id;
  }

  for (const CVxMapEntry& map : mesh.maps(VX_VMAP_RGB)) {
    log.info("   vcolRGB vmap:%s", map.name.c_str());
    if (!fits(mesh, map, 3, itemName, log)) continue;
    maps.colours.push_back(map.id);
    maps.colourHasAlpha.push_back(false);
  }
  for (const CVxMapEntry& map : mesh.maps(VX_VMAP_RGBA)) {
    log.info("   vcolRGBA vmap:%s", map.name.c_str());
    if (!fits(mesh, map, 4, itemName, log)) continue;
    maps.colours.push_back(map.id);
    maps.colourHasAlpha.push_back(true);
  }

  // Texture-coordinate sets are numbered by name, whatever order the host lists them in.
  std::vector<CVxMapEntry> uvs = mesh.maps(VX_VMAP_TEXTUREUV);
  std::stable_sort(uvs.begin(), uvs.end(), [](const CVxMapEntry& a, const CVxMapEntry& b) { return a.name < b.name; });
  for (const CVxMapEntry& map : uvs) {
    log.info("   uv vmap:%s count:%u", map.name.c_str(), mesh.mapValueCount(map.id));
    if (!fits(mesh, map, 2, itemName, log)) continue;
    maps.uvs.push_back(map.id);
    maps.uvNames.push_back(map.name);
  }

  if (tangents) {
    for (const CVxMapEntry& map : mesh.maps(VX_VMAP_TBASIS)) {
      log.info("   vTbasis vmap:%s", map.name.c_str());
      if (fits(mesh, map, 6, itemName, log)) maps.tangentBases.push_back(map.id);
    }
  }
  return maps;
}
