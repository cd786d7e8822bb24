// The benchmark's meshes: a wavy quad grid in the XY plane, facing +Z, with
// the vertex maps a game asset usually carries:
// - "NORM" "normal": the surface's exact normal per point;
// - "TXUV" "uv0": planar texture coordinates per point;
// - "TXUV" "uv1": two tiles side by side, so the middle column of points is a
//   seam: its points hold u = 1 for the left tile, and the right tile's
//   polygons give u = 0 at their corners there, which splits those points;
// - "RGBA" "colour": a gradient per point.
// The host splits every quad into two triangles.
#pragma once

#include <cstddef>
#include <cstdio>

#include "mesh/mesh_data.h"

namespace gltfio::bench {

struct GridSize {
  unsigned columns = 0, rows = 0;  // quads across and up

  std::size_t triangles() const { return 2 * std::size_t(columns) * rows; }
  std::size_t points() const { return std::size_t(columns + 1) * (rows + 1); }
};

// The grid closest to square with exactly `triangles` / 2 quads (one more
// triangle when the count is odd).
GridSize gridFor(std::size_t triangles);

// Fills an empty mesh with the grid and its maps.
void fillGrid(vexo::MeshData& mesh, const GridSize& size);

// Writes a scene file holding one "mesh" item, "Grid", with `mesh` in the
// scene-file form: points, polygons, material tags, and every map with its
// point and corner values. False when writing fails.
bool writeMeshScene(std::FILE* out, const vexo::MeshData& mesh);

}  // namespace gltfio::bench
