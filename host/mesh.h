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

  bool visitPolygons(IVxPolygonVisitor& visitor) const { return mesh_ && VxOk(mesh_->VisitPolygons(&visitor)); }

 private:
  IVxMesh* mesh_ = nullptr;
};
