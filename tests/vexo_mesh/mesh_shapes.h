// Meshes the mesh-engine tests build, all facing outwards.
#pragma once

#include <cmath>
#include <vector>

#include "mesh/mesh_data.h"

namespace vexo::test {

// Unit cube centred on the origin: point i has x, y, z from bits 0, 1, 2.
inline void addCube(MeshData& mesh) {
  for (int i = 0; i < 8; ++i) mesh.addPoint({i & 1 ? 0.5 : -0.5, i & 2 ? 0.5 : -0.5, i & 4 ? 0.5 : -0.5});
  const std::uint32_t faces[] = {0, 2, 3, 1, 4, 5, 7, 6, 0, 4, 6, 2, 1, 3, 7, 5, 0, 1, 5, 4, 2, 6, 7, 3};
  mesh.appendPolygons(4, faces, 6);  // -Z, +Z, -X, +X, -Y, +Y
}

// Radius 1 around Y from y = 0 to 1: `segments` side quads, then a cap n-gon at the top and bottom.
inline void addCylinder(MeshData& mesh, unsigned segments) {
  std::vector<std::uint32_t> top, bottom;
  for (unsigned s = 0; s < segments; ++s) {
    const double phi = 2 * 3.14159265358979323846 * s / segments;
    bottom.push_back(mesh.addPoint({std::cos(phi), 0, -std::sin(phi)}));
    top.push_back(mesh.addPoint({std::cos(phi), 1, -std::sin(phi)}));
  }
  for (unsigned s = 0; s < segments; ++s) {
    const unsigned n = (s + 1) % segments;
    mesh.addPolygon({bottom[s], bottom[n], top[n], top[s]});
  }
  mesh.addPolygon(top.data(), top.size());
  mesh.addPolygon(std::vector<std::uint32_t>(bottom.rbegin(), bottom.rend()).data(), bottom.size());
}

}  // namespace vexo::test
