// What the host derives from a mesh's points and polygons: its triangles, a
// normal per polygon and a smoothed normal per polygon corner.
//
// Corner normals: at each corner, the normalised sum of the area-weighted
// normals of the polygons around the corner's point whose normal lies within
// the mesh's smoothing angle of the corner's own polygon (which always
// counts). Area weighting keeps slivers from tilting a smooth surface. The
// sum runs in polygon order, so corners that gather the same polygons get
// bit-identical normals; each distinct normal is stored once per point and
// corners refer to it, which keeps smooth meshes small.
//
// A polygon without area has no direction of its own: it reports +Y as its
// normal, weighs nothing in its neighbours' sums, and its corners take the
// sum of every polygon around the point (+Y when that is empty too).
#pragma once

#include <cstdint>
#include <vector>

#include "mesh/vec3.h"

namespace vexo {

class MeshData;

inline constexpr Vec3 kNoAreaNormal{0.0, 1.0, 0.0};

struct MeshGeometry {
  std::vector<std::uint32_t> triangles;  // 3 point numbers per triangle, see MeshData::firstTriangle
  std::vector<Vec3> polygonNormals;      // unit length
  std::vector<double> polygonAreas;
  std::vector<std::uint32_t> cornerNormalIndex;  // per corner, into normals
  std::vector<Vec3> normals;                     // unit length

  const Vec3& cornerNormal(std::uint32_t corner) const { return normals[cornerNormalIndex[corner]]; }
};

MeshGeometry buildMeshGeometry(const MeshData& mesh);
// The same without the quicker path buildMeshGeometry takes for meshes of
// triangles and quads; the results are the same bit for bit.
MeshGeometry buildMeshGeometryAnyPolygons(const MeshData& mesh);

}  // namespace vexo
