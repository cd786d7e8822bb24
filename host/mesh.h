// Wrappers over a host mesh and its vertex maps.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "scene.h"
#include "vexo/vx_mesh.h"

// One vertex map of a mesh: its name and host identifier.
struct CVxMapEntry {
  std::string name;
  VxMapID id = VX_MAP_NONE;
};

// One polygon during a walk; valid only inside CVxPolygonVisitor::polygon.
class CVxPolygon {
 public:
  explicit CVxPolygon(const IVxPolygon& polygon) : polygon_(polygon) {}

  // The polygon's material tag; "Default" when the host gives none.
  const char* materialTag() const {
    const char* tag = polygon_.Tag(VX_PTAG_MATERIAL);
    return tag ? tag : "Default";
  }
  unsigned vertexCount() const { return polygon_.VertexCount(); }
  unsigned point(unsigned vertex) const { return polygon_.PointByIndex(vertex); }
  unsigned triangleCount() const { return polygon_.TriangleCount(); }
  bool triangle(unsigned index, unsigned points[3]) const { return VxOk(polygon_.Triangle(index, points)); }
  // The map's value at one of the polygon's points (the corner's own value
  // first, then the point's): as many floats as the map's dimension.
  bool mapValue(VxMapID map, unsigned point, float* values) const {
    return VxOk(polygon_.MapEvaluate(map, point, values));
  }
  // The map's value at each of the polygon's corners, in vertex order, and
  // per corner whether it has one; false when the host cannot answer so.
  bool mapValues(VxMapID map, float* values, unsigned char* found) const {
    return VxOk(polygon_.MapEvaluateCorners(map, values, found));
  }
  // The host's smoothed normal at one of the polygon's points.
  bool cornerNormal(unsigned point, double normal[3]) const { return VxOk(polygon_.CornerNormal(point, normal)); }

 private:
  const IVxPolygon& polygon_;
};

class CVxPolygonVisitor {
 public:
  virtual ~CVxPolygonVisitor() = default;
  // Called once per polygon in index order; false stops the walk.
  virtual bool polygon(const CVxPolygon& polygon) = 0;
};

class CVxMesh {
 public:
  // Empty (test() false) when the item has no mesh.
  CVxMesh(const CVxUser_Scene& scene, const CVxUser_Item& item);

  bool test() const { return mesh_ != nullptr; }
  IVxMesh* raw() const { return mesh_; }
  std::string ident() const { return mesh_ ? mesh_->Ident() : std::string(); }
  unsigned pointCount() const { return mesh_ ? mesh_->PointCount() : 0; }
  unsigned polygonCount() const { return mesh_ ? mesh_->PolygonCount() : 0; }
  bool pointPosition(unsigned point, double position[3]) const {
    return mesh_ && VxOk(mesh_->PointPosition(point, position));
  }
  // The number of triangles the host makes of a polygon; 0 when it cannot tell.
  unsigned polygonTriangleCount(unsigned polygon) const;

  // The maps of one type, in the host's order; a map the host cannot
  // describe is listed with VX_MAP_NONE.
  std::vector<CVxMapEntry> maps(std::uint32_t type) const;
  unsigned mapValueCount(VxMapID map) const { return mesh_ ? mesh_->MapValueCount(map) : 0; }
  // Values per element of a map (3 for "NORM", 2 for "TXUV").
  unsigned mapDimension(VxMapID map) const { return mesh_ ? mesh_->MapDimension(map) : 0; }

  // The map's point and corner values as the host keeps them; false when it cannot hand them out.
  bool mapArrays(VxMapID map, VxMapArrays& arrays) const { return mesh_ && VxOk(mesh_->MapArrays(map, &arrays)); }

  // Walks every polygon in index order; false when the walk stopped before the end.
  bool visitPolygons(CVxPolygonVisitor& visitor) const;

 private:
  IVxMesh* mesh_ = nullptr;
};
