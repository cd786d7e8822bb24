// The host's mesh: points, polygons of any size with their tags, vertex maps,
// and the smoothing angle; plus the geometry the host derives from them
// (triangles, polygon normals, smoothed corner normals), built on first use.
//
// Storage is flat: polygons are one array of point numbers with an offset per
// polygon, so a mesh of tens of millions of triangles costs no allocation per
// polygon. Polygons and points are only ever appended; a corner (one vertex
// slot of one polygon) is numbered firstCorner(polygon) + slot.
//
// Building calls throw MeshError with a message a user can act on when their
// input does not fit the mesh; the scene-file reader adds the file position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mesh/mesh_geometry.h"
#include "mesh/vec3.h"
#include "mesh/vertex_map.h"

namespace vexo {

class MeshError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The tag a polygon has for a tag type it was never given.
inline constexpr std::string_view kDefaultTag = "Default";
inline constexpr double kDefaultSmoothingAngle = 40.0;
inline constexpr std::uint32_t kNoCorner = 0xffffffffu;
inline constexpr std::size_t kNoMap = static_cast<std::size_t>(-1);

// Values per element of the host's known map types ("TXUV" 2, "RGBA" 4, ...); 0 for others.
unsigned defaultMapDimension(std::uint32_t type);

class MeshData {
 public:
  explicit MeshData(std::string ident = {});
  MeshData(const MeshData&) = delete;
  MeshData& operator=(const MeshData&) = delete;
  MeshData(MeshData&&) = default;
  MeshData& operator=(MeshData&&) = default;

  // The identity the SDK reports for this mesh (its item's identity).
  const std::string& ident() const { return ident_; }
  void setIdent(std::string ident) { ident_ = std::move(ident); }

  void reserve(std::size_t points, std::size_t polygons, std::size_t corners);

  // --- points
  std::uint32_t addPoint(const Vec3& position);
  // `count` points from x, y, z triples.
  void appendPoints(const double* xyz, std::size_t count);
  std::size_t pointCount() const { return points_.size(); }
  const Vec3& point(std::uint32_t index) const { return points_[index]; }
  const std::vector<Vec3>& points() const { return points_; }
  // Every point at once: a mesh without points yet takes the array over
  // rather than copying it; otherwise the points are appended.
  void setPoints(std::vector<Vec3>&& points);

  // --- polygons: at least 3 vertices, each an existing point
  std::uint32_t addPolygon(const std::uint32_t* points, std::size_t count);
  std::uint32_t addPolygon(std::initializer_list<std::uint32_t> points) {
    return addPolygon(points.begin(), points.size());
  }
  // `polygonCount` polygons of `verticesEach` vertices each, point numbers back to back.
  void appendPolygons(std::size_t verticesEach, const std::uint32_t* points, std::size_t polygonCount);
  // Every polygon at once: polygon i's point numbers are
  // points[offsets[i] .. offsets[i + 1]), with offsets[0] == 0. A mesh without
  // polygons yet takes both arrays over; otherwise the polygons are appended.
  void setPolygons(std::vector<std::uint32_t>&& offsets, std::vector<std::uint32_t>&& points);
  std::size_t polygonCount() const { return offsets_.size() - 1; }
  std::size_t cornerCount() const { return corners_.size(); }
  unsigned polygonSize(std::uint32_t polygon) const { return offsets_[polygon + 1] - offsets_[polygon]; }
  const std::uint32_t* polygonPoints(std::uint32_t polygon) const { return corners_.data() + offsets_[polygon]; }
  std::uint32_t firstCorner(std::uint32_t polygon) const { return offsets_[polygon]; }
  // The polygon's corner at a point (its first, should the point repeat), or kNoCorner.
  std::uint32_t corner(std::uint32_t polygon, std::uint32_t point) const;
  // A polygon of n vertices has n - 2 triangles, and they follow those of
  // the polygons before it: polygon p's first triangle is this number.
  std::uint32_t firstTriangle(std::uint32_t polygon) const { return offsets_[polygon] - 2 * polygon; }
  std::size_t triangleCount() const { return corners_.size() - 2 * polygonCount(); }

  // --- polygon tags by tag type (VX_PTAG_MATERIAL, ...)
  void setPolygonTag(std::uint32_t polygon, std::uint32_t tagType, std::string_view value);
  // The same tag on `count` polygons from `first`.
  void setPolygonTags(std::uint32_t first, std::size_t count, std::uint32_t tagType, std::string_view value);
  // The tag's text, "Default" when unset; stays valid as long as the mesh.
  const std::string& polygonTag(std::uint32_t polygon, std::uint32_t tagType) const;

  // --- smoothing: polygons meeting at a point share their normals there when
  // their normals are at most this many degrees apart.
  void setSmoothingAngle(double degrees);
  double smoothingAngle() const { return smoothingAngle_; }

  // --- vertex maps, kept in creation order
  // Adds a map and returns its index. A dimension of 0 takes the type's usual one.
  std::size_t addMap(std::uint32_t type, std::string name, unsigned dimension = 0);
  std::size_t mapCount() const { return maps_.size(); }
  const VertexMap& map(std::size_t index) const { return *maps_[index]; }
  // The map's index, or kNoMap.
  std::size_t findMap(std::uint32_t type, std::string_view name) const;

  // `values` holds the map's dimension() floats per element.
  void setPointValue(std::size_t map, std::uint32_t point, const float* values);
  // A value for every point of the mesh, in point order.
  void setPointValues(std::size_t map, const float* values);
  // The same from an array of pointCount() * dimension() values, which a map
  // without point values yet takes over rather than copies.
  void setPointValues(std::size_t map, std::vector<float>&& values);
  // Values for `count` points from point `first`, dimension() floats each, back to back.
  void setPointValues(std::size_t map, std::uint32_t first, std::size_t count, const float* values);
  // The value at the corner of `polygon` that uses `point`.
  void setCornerValue(std::size_t map, std::uint32_t polygon, std::uint32_t point, const float* values);
  // Values for `count` consecutive corners from corner `first`.
  void setCornerValues(std::size_t map, std::uint32_t first, std::size_t count, const float* values);

  // --- derived geometry, built on first use after a change to points,
  // polygons or the smoothing angle
  const MeshGeometry& geometry() const;

 private:
  struct TagColumn {
    std::uint32_t type;
    std::vector<std::uint32_t> values;  // per polygon, an index into tagNames_; may be shorter
  };

  void checkPoints(const std::uint32_t* points, std::size_t count) const;
  void checkMap(std::size_t map) const;
  std::uint32_t internTag(std::string_view value);
  TagColumn& tagColumn(std::uint32_t tagType);
  void changed() { geometry_.reset(); }

  std::string ident_;
  std::vector<Vec3> points_;
  std::vector<std::uint32_t> offsets_{0};
  std::vector<std::uint32_t> corners_;

  std::vector<TagColumn> tags_;
  std::deque<std::string> tagNames_;  // a deque keeps the texts in place as it grows
  std::unordered_map<std::string_view, std::uint32_t> tagIndex_;

  double smoothingAngle_ = kDefaultSmoothingAngle;
  std::vector<std::unique_ptr<VertexMap>> maps_;
  mutable std::unique_ptr<MeshGeometry> geometry_;
};

}  // namespace vexo
