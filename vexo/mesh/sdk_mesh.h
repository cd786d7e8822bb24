// The SDK's view of a MeshData: IVxMesh, and the IVxPolygon that
// VisitPolygons hands to the visitor.
//
// Map identifiers are the map's index + 1. Everything the polygon answers
// comes from the mesh's cached geometry; a walk allocates nothing per polygon.
// Result codes: VXR_OUTOFBOUNDS for a point, polygon or index past the end,
// VXR_BADARG for a null output or an unknown map identifier, VXR_NOTFOUND
// for a value that is not there (or a point that is not the polygon's).
#pragma once

#include "mesh/mesh_data.h"
#include "vexo/vx_mesh.h"

namespace vexo {

class SdkMesh final : public IVxMesh {
 public:
  explicit SdkMesh(MeshData& mesh) : mesh_(&mesh) {}

  MeshData& data() const { return *mesh_; }

  // The map's index, or kNoMap for an identifier this mesh did not hand out.
  std::size_t mapIndex(VxMapID map) const {
    return map != VX_MAP_NONE && map <= mesh_->mapCount() ? std::size_t(map - 1) : kNoMap;
  }

  const char* Ident() const override;
  unsigned PointCount() override;
  unsigned PolygonCount() override;
  VxResult PointPosition(unsigned point, double position[3]) override;
  VxResult PolygonTriangleCount(unsigned polygon, unsigned* count) override;

  unsigned MapCount(std::uint32_t type) override;
  VxResult MapByIndex(std::uint32_t type, unsigned index, const char** name, VxMapID* map) override;
  VxResult MapLookup(std::uint32_t type, const char* name, VxMapID* map) override;
  unsigned MapDimension(VxMapID map) override;
  unsigned MapValueCount(VxMapID map) override;
  VxResult MapPointValue(VxMapID map, unsigned point, float* values) override;
  VxResult MapEnumeratePoints(VxMapID map, IVxMapPointVisitor* visitor) override;
  VxResult MapArrays(VxMapID map, VxMapArrays* arrays) override;

  VxResult VisitPolygons(IVxPolygonVisitor* visitor) override;

 private:
  MeshData* mesh_;
};

}  // namespace vexo
