// Vexo SDK: meshes, their polygons and vertex maps.
//
// A mesh holds points and polygons of any size. Each polygon carries a
// material tag and is triangulated by the host. Vertex maps are found by a
// four-character type code and a name; a map holds continuous values per
// point and may hold discontinuous values per polygon corner, which win
// over the point's value at that corner.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

// Four characters read as one big-endian 32-bit value: VX_MAKE_ID('T','X','U','V').
constexpr std::uint32_t VX_MAKE_ID(char a, char b, char c, char d) {
  return (std::uint32_t(std::uint8_t(a)) << 24) | (std::uint32_t(std::uint8_t(b)) << 16) |
         (std::uint32_t(std::uint8_t(c)) << 8) | std::uint32_t(std::uint8_t(d));
}

constexpr std::uint32_t VX_VMAP_NORMAL = VX_MAKE_ID('N', 'O', 'R', 'M');   // 3 values
constexpr std::uint32_t VX_VMAP_RGB = VX_MAKE_ID('R', 'G', 'B', ' ');      // 3 values
constexpr std::uint32_t VX_VMAP_RGBA = VX_MAKE_ID('R', 'G', 'B', 'A');     // 4 values
constexpr std::uint32_t VX_VMAP_TEXTUREUV = VX_MAKE_ID('T', 'X', 'U', 'V');  // 2 values
constexpr std::uint32_t VX_VMAP_TBASIS = VX_MAKE_ID('T', 'B', 'A', 'S');   // 6 values: tangent, bitangent
constexpr std::uint32_t VX_VMAP_WEIGHT = VX_MAKE_ID('W', 'G', 'H', 'T');   // 1 value
constexpr std::uint32_t VX_PTAG_MATERIAL = VX_MAKE_ID('M', 'A', 'T', 'R');

// Identifies one vertex map of one mesh. Zero is never a valid map.
using VxMapID = std::uint64_t;
constexpr VxMapID VX_MAP_NONE = 0;

// One polygon as the visitor sees it. Valid only inside IVxPolygonVisitor::Polygon.
class IVxPolygon {
 public:
  virtual unsigned Index() const = 0;
  virtual unsigned VertexCount() const = 0;
  virtual unsigned PointByIndex(unsigned vertex) const = 0;
  // The polygon's tag of a type (VX_PTAG_MATERIAL); "Default" when unset.
  virtual const char* Tag(std::uint32_t tagType) const = 0;
  // The host's triangulation: `TriangleCount()` triangles of three points each.
  virtual unsigned TriangleCount() const = 0;
  virtual VxResult Triangle(unsigned index, unsigned points[3]) const = 0;
  // The polygon's geometric normal.
  virtual VxResult Normal(double normal[3]) const = 0;
  // The host's smoothed normal for one of the polygon's points.
  virtual VxResult CornerNormal(unsigned point, double normal[3]) const = 0;
  // A map's value at one of the polygon's points: the corner's own value when
  // the map has one, else the point's value. VXR_NOTFOUND when it has neither.
  virtual VxResult MapEvaluate(VxMapID map, unsigned point, float* values) const = 0;
  // A map's value at every corner of the polygon at once, in vertex order:
  // the map's dimension of floats per corner into `values`, and per corner
  // 1 into `found` when the corner or its point has a value (its floats are
  // then set), else 0. Hosts without it say VXR_NOTIMPL.
  virtual VxResult MapEvaluateCorners(VxMapID map, float* values, unsigned char* found) const {
    (void)map;
    (void)values;
    (void)found;
    return VXR_NOTIMPL;
  }

 protected:
  ~IVxPolygon() = default;
};

class IVxPolygonVisitor {
 public:
  // Called once per polygon in index order; a failure stops the walk.
  virtual VxResult Polygon(const IVxPolygon& polygon) = 0;

 protected:
  ~IVxPolygonVisitor() = default;
};

// Receives a map's point values one point at a time.
class IVxMapPointVisitor {
 public:
  // `values` holds the map's dimension of floats; a failure stops the walk.
  virtual VxResult Point(unsigned point, const float* values) = 0;

 protected:
  ~IVxMapPointVisitor() = default;
};

// A map's values as the host keeps them, for a reader that walks the whole
// mesh. Corners are numbered across the mesh in polygon order: the corners of
// polygon p follow those of polygons 0 to p-1, in vertex order. A corner's own
// value wins over its point's. Valid until the mesh changes.
struct VxMapArrays {
  unsigned dimension = 0;
  unsigned pointCount = 0;                   // points from here on have no value
  const float* pointValues = nullptr;        // `dimension` floats per point
  const std::uint64_t* pointHas = nullptr;   // point p has a value: bit (p & 63) of word p / 64
  std::size_t cornerCount = 0;
  const std::uint32_t* cornerIds = nullptr;  // the corners with a value, ascending
  const float* cornerValues = nullptr;       // `dimension` floats per entry of cornerIds
};

class IVxMesh {
 public:
  // Stable while the scene is loaded; instances return their source's mesh.
  virtual const char* Ident() const = 0;
  virtual unsigned PointCount() = 0;
  virtual unsigned PolygonCount() = 0;
  virtual VxResult PointPosition(unsigned point, double position[3]) = 0;
  virtual VxResult PolygonTriangleCount(unsigned polygon, unsigned* count) = 0;

  // Maps of one type in the host's order.
  virtual unsigned MapCount(std::uint32_t type) = 0;
  virtual VxResult MapByIndex(std::uint32_t type, unsigned index, const char** name, VxMapID* map) = 0;
  virtual VxResult MapLookup(std::uint32_t type, const char* name, VxMapID* map) = 0;
  // Values per element of a map (2 for "TXUV"), and how many elements it
  // holds, point values and corner values together.
  virtual unsigned MapDimension(VxMapID map) = 0;
  virtual unsigned MapValueCount(VxMapID map) = 0;
  // A point's continuous value; VXR_NOTFOUND when the point has none.
  virtual VxResult MapPointValue(VxMapID map, unsigned point, float* values) = 0;
  // Visits every point that has a value in the map, in point order: for a
  // weight map ("WGHT") its (point, weight) pairs. Hosts without it say VXR_NOTIMPL.
  virtual VxResult MapEnumeratePoints(VxMapID map, IVxMapPointVisitor* visitor) {
    (void)map;
    (void)visitor;
    return VXR_NOTIMPL;
  }

  // The map's point and corner values as flat arrays. Hosts without it say VXR_NOTIMPL.
  virtual VxResult MapArrays(VxMapID map, VxMapArrays* arrays) {
    (void)map;
    (void)arrays;
    return VXR_NOTIMPL;
  }

  virtual VxResult VisitPolygons(IVxPolygonVisitor* visitor) = 0;

 protected:
  ~IVxMesh() = default;
};

class IVxMeshService {
 public:
  // The mesh of a "mesh", "meshInst" or "triSurf" item. VXR_NOTFOUND otherwise.
  virtual VxResult MeshLookup(IVxItem* item, IVxMesh** mesh) = 0;

 protected:
  ~IVxMeshService() = default;
};
