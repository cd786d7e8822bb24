#include "mesh_maps.h"

#include <algorithm>

MeshMaps chooseMeshMaps(const CVxMesh& mesh, bool tangents, GltfLogMsg& log) {
  MeshMaps maps;

  const std::vector<CVxMapEntry> normals = mesh.maps(VX_VMAP_NORMAL);
  if (normals.empty()) {
    log.info("   adding calculated normals (normals mesh map not found)");
  } else {
    log.info("   normal vmap:%s", normals.front().name.c_str());
    maps.normal = normals.front().id;
  }

  for (const CVxMapEntry& map : mesh.maps(VX_VMAP_RGB)) {
    log.info("   vcolRGB vmap:%s", map.name.c_str());
    maps.colours.push_back(map.id);
    maps.colourHasAlpha.push_back(false);
  }
  for (const CVxMapEntry& map : mesh.maps(VX_VMAP_RGBA)) {
    log.info("   vcolRGBA vmap:%s", map.name.c_str());
    maps.colours.push_back(map.id);
    maps.colourHasAlpha.push_back(true);
  }

  // Texture-coordinate sets are numbered by name, whatever order the host lists them in.
  std::vector<CVxMapEntry> uvs = mesh.maps(VX_VMAP_TEXTUREUV);
  std::stable_sort(uvs.begin(), uvs.end(), [](const CVxMapEntry& a, const CVxMapEntry& b) { return a.name < b.name; });
  for (const CVxMapEntry& map : uvs) {
    log.info("   uv vmap:%s count:%u", map.name.c_str(), mesh.mapValueCount(map.id));
    maps.uvs.push_back(map.id);
  }

  if (tangents) {
    for (const CVxMapEntry& map : mesh.maps(VX_VMAP_TBASIS)) {
      log.info("   vTbasis vmap:%s", map.name.c_str());
      maps.tangentBases.push_back(map.id);
    }
  }
  return maps;
}
