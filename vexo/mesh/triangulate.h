// Triangulation of one polygon of any size, as the host does it for every
// polygon of a mesh.
//
// Contract:
// - `positions` holds the polygon's `count` (>= 3) vertex positions in order.
// - `out` receives exactly 3 * (count - 2) local vertex numbers (0..count-1),
//   triangle by triangle, each triangle keeping the polygon's winding.
// - Triangles stay as they are: (0, 1, 2).
// - Convex quads are split along the shorter diagonal, 0-2 on a tie:
//   (0, 1, 2)(0, 2, 3) or (1, 2, 3)(1, 3, 0). A quad with a reflex or flat
//   vertex is split along the diagonal that starts at that vertex.
// - Larger polygons are ear-clipped in the plane of their Newell normal, so
//   concave polygons come out right; ears that would be flat are avoided
//   while a proper ear exists. Degenerate or self-crossing polygons still
//   give count - 2 triangles, some of which may have no area.
#pragma once

#include <cstdint>
#include <vector>

#include "mesh/vec3.h"

namespace vexo {

// Working memory reused from polygon to polygon, so that a mesh is
// triangulated without an allocation per polygon.
struct TriangulationScratch {
  std::vector<double> u, v;
  std::vector<std::uint32_t> prev, next;
};

// Newell's normal: its direction follows the polygon's winding, its length
// is twice the polygon's area (for a planar polygon).
Vec3 newellNormal(const Vec3* positions, unsigned count);

// One edge's share of Newell's normal, relative to the polygon's first vertex.
inline void addNewellEdge(Vec3& n, const Vec3& origin, const Vec3& from, const Vec3& to) {
  const Vec3 a = from - origin;
  const Vec3 b = to - origin;
  n.x += (a.y - b.y) * (a.z + b.z);
  n.y += (a.z - b.z) * (a.x + b.x);
  n.z += (a.x - b.x) * (a.y + b.y);
}

// newellNormal of a polygon whose size is known when compiling (triangles,
// quads): the same sums in the same order, unrolled.
template <unsigned N>
Vec3 newellNormalOf(const Vec3* positions) {
  Vec3 n;
  for (unsigned i = 0; i < N; ++i) addNewellEdge(n, positions[0], positions[i], positions[i + 1 == N ? 0 : i + 1]);
  return n;
}

// `normal` is the polygon's Newell normal (any length; zero for a polygon without area).
void triangulatePolygon(const Vec3* positions, unsigned count, const Vec3& normal, TriangulationScratch& scratch,
                        std::uint32_t* out);

}  // namespace vexo
