#include "mesh/mesh_geometry.h"

#include <algorithm>
#include <cmath>

#include "mesh/mesh_data.h"
#include "mesh/triangulate.h"

namespace vexo {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Triangles, unit normals and areas of every polygon in one pass.
void triangulateAll(const MeshData& mesh, MeshGeometry& g) {
  const std::size_t polygons = mesh.polygonCount();
  g.triangles.resize(mesh.triangleCount() * 3);
  g.polygonNormals.resize(polygons);
  g.polygonAreas.resize(polygons);
  TriangulationScratch scratch;
  std::vector<Vec3> positions;
  for (std::uint32_t p = 0; p < polygons; ++p) {
    const unsigned n = mesh.polygonSize(p);
    const std::uint32_t* pts = mesh.polygonPoints(p);
    positions.resize(n);
    for (unsigned k = 0; k < n; ++k) positions[k] = mesh.point(pts[k]);
    const Vec3 newell = newellNormal(positions.data(), n);
    const double len = length(newell);
    g.polygonNormals[p] = len > 0.0 ? newell * (1.0 / len) : kNoAreaNormal;
    g.polygonAreas[p] = 0.5 * len;

    std::uint32_t* tri = g.triangles.data() + std::size_t(mesh.firstTriangle(p)) * 3;
    triangulatePolygon(positions.data(), n, newell, scratch, tri);
    for (unsigned k = 0; k < 3 * (n - 2); ++k) tri[k] = pts[tri[k]];
  }
}

// triangulateAll for a mesh of triangles and quads only: the same sums in
// the same order, with the positions read straight from the mesh and Newell's
// sum unrolled.
void triangulateSmall(const MeshData& mesh, MeshGeometry& g) {
  const std::size_t polygons = mesh.polygonCount();
  g.triangles.resize(mesh.triangleCount() * 3);
  g.polygonNormals.resize(polygons);
  g.polygonAreas.resize(polygons);
  TriangulationScratch scratch;  // quads need none
  const Vec3* points = mesh.points().data();
  std::uint32_t* tri = g.triangles.data();
  for (std::uint32_t p = 0; p < polygons; ++p) {
    const std::uint32_t* pts = mesh.polygonPoints(p);
    const bool quad = mesh.polygonSize(p) == 4;
    const Vec3 positions[4] = {points[pts[0]], points[pts[1]], points[pts[2]], quad ? points[pts[3]] : Vec3{}};
    const Vec3 newell = quad ? newellNormalOf<4>(positions) : newellNormalOf<3>(positions);
    const double len = length(newell);
    g.polygonNormals[p] = len > 0.0 ? newell * (1.0 / len) : kNoAreaNormal;
    g.polygonAreas[p] = 0.5 * len;
    if (quad) {
      triangulatePolygon(positions, 4, newell, scratch, tri);
      for (unsigned k = 0; k < 6; ++k) tri[k] = pts[tri[k]];
      tri += 6;
    } else {
      tri[0] = pts[0];
      tri[1] = pts[1];
      tri[2] = pts[2];
      tri += 3;
    }
  }
}

bool onlyTrianglesAndQuads(const MeshData& mesh) {
  for (std::uint32_t p = 0, polygons = std::uint32_t(mesh.polygonCount()); p < polygons; ++p)
    if (mesh.polygonSize(p) > 4) return false;
  return true;
}

// Point-to-polygon adjacency in compressed rows: the polygons around point v
// are polygons[begin[v] .. end[v]), in polygon order, each once, and
// corners[i] is polygons[i]'s first corner at v.
struct PointPolygons {
  std::vector<std::uint32_t> begin, end, polygons, corners;

  explicit PointPolygons(const MeshData& mesh) {
    const std::size_t points = mesh.pointCount();
    const std::size_t polygonTotal = mesh.polygonCount();
    begin.assign(points + 1, 0);
    for (std::uint32_t p = 0; p < polygonTotal; ++p) {
      const std::uint32_t* pts = mesh.polygonPoints(p);
      for (unsigned k = 0, n = mesh.polygonSize(p); k < n; ++k) ++begin[pts[k] + 1];
    }
    for (std::size_t v = 0; v < points; ++v) begin[v + 1] += begin[v];
    end.assign(begin.begin(), begin.end() - 1);
    polygons.resize(mesh.cornerCount());
    corners.resize(mesh.cornerCount());
    for (std::uint32_t p = 0; p < polygonTotal; ++p) {
      const std::uint32_t* pts = mesh.polygonPoints(p);
      const std::uint32_t first = mesh.firstCorner(p);
      for (unsigned k = 0, n = mesh.polygonSize(p); k < n; ++k) {
        std::uint32_t& e = end[pts[k]];
        // A point that repeats within a polygon lists that polygon once.
        if (e > begin[pts[k]] && polygons[e - 1] == p) continue;
        corners[e] = first + k;
        polygons[e++] = p;
      }
    }
  }
};

bool sameBits(const Vec3& a, const Vec3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

void smoothCorners(const MeshData& mesh, MeshGeometry& g) {
  const PointPolygons around(mesh);
  // A small allowance lets polygons of equal direction share at an angle of 0.
  const double angle = std::clamp(mesh.smoothingAngle(), 0.0, 180.0);
  const double cosLimit = std::cos(angle * (kPi / 180.0)) - 1e-12;
  g.cornerNormalIndex.resize(mesh.cornerCount());
  g.normals.clear();
  g.normals.reserve(mesh.pointCount());
  for (std::uint32_t p = 0; p < mesh.polygonCount(); ++p) {
    const Vec3 own = g.polygonNormals[p];
    const bool flat = g.polygonAreas[p] <= 0.0;
    const std::uint32_t* pts = mesh.polygonPoints(p);
    std::uint32_t* out = g.cornerNormalIndex.data() + mesh.firstCorner(p);
    for (unsigned k = 0, n = mesh.polygonSize(p); k < n; ++k) {
      Vec3 sum;
      const std::uint32_t v = pts[k];
      std::uint32_t i = around.begin[v];
      for (; i < around.end[v]; ++i) {
        const std::uint32_t q = around.polygons[i];
        const Vec3& nq = g.polygonNormals[q];
        if (flat || q == p || dot(own, nq) >= cosLimit) sum += nq * g.polygonAreas[q];
      }
      const double len = length(sum);
      const Vec3 normal = len > 0.0 ? sum * (1.0 / len) : own;
      // Share the entry of an earlier corner at this point that came out the same.
      std::uint32_t index = std::uint32_t(g.normals.size());
      for (i = around.begin[v]; i < around.end[v] && around.polygons[i] < p; ++i) {
        const std::uint32_t earlier = g.cornerNormalIndex[around.corners[i]];
        if (sameBits(g.normals[earlier], normal)) {
          index = earlier;
          break;
        }
      }
      if (index == g.normals.size()) g.normals.push_back(normal);
      out[k] = index;
    }
  }
}

}  // namespace

MeshGeometry buildMeshGeometry(const MeshData& mesh) {
  MeshGeometry g;
  if (onlyTrianglesAndQuads(mesh))
    triangulateSmall(mesh, g);
  else
    triangulateAll(mesh, g);
  smoothCorners(mesh, g);
  return g;
}

MeshGeometry buildMeshGeometryAnyPolygons(const MeshData& mesh) {
  MeshGeometry g;
  triangulateAll(mesh, g);
  smoothCorners(mesh, g);
  return g;
}

}  // namespace vexo
