// Collects a mesh's triangles into glTF primitives while the host walks its
// polygons: one primitive per material tag (or one in all), with one output
// vertex per distinct combination of point and corner values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/mesh.h"
#include "mesh_maps.h"

struct PrimitiveBuild {
  std::string tag;                          // the polygons' material tag
  std::vector<std::uint32_t> vertexPoint;   // per vertex: its mesh point
  std::vector<double> normals;              // 3 per vertex, as the host gave them
  std::vector<float> values;                // per vertex: the corner values, `stride` of them
  std::vector<std::uint32_t> indices;       // 3 per triangle, in the host's order
};

class MeshBuilder : public IVxPolygonVisitor {
 public:
  // `splitByTag`: one primitive per material tag in order of first use.
  // `indexCount` (3 per host triangle) sizes the arrays up front.
  MeshBuilder(const MeshMaps& maps, unsigned pointCount, std::size_t indexCount, bool splitByTag);

  VxResult Polygon(const IVxPolygon& polygon) override;

  const std::vector<PrimitiveBuild>& primitives() const { return primitives_; }
  // Where each kind of value sits inside a vertex's `values`.
  std::size_t stride() const { return stride_; }
  std::size_t colourOffset(std::size_t set) const { return 4 * set; }
  std::size_t uvOffset(std::size_t set) const { return uvBase_ + 3 * set; }  // u, v, has-value
  std::size_t tangentOffset(std::size_t set) const { return tangentBase_ + 6 * set; }

 private:
  std::uint32_t primitiveFor(const char* tag);
  PrimitiveBuild& newPrimitive();
  // The primitive's vertex for the point as seen from the polygon, made when new.
  std::uint32_t vertexFor(const IVxPolygon& polygon, std::uint32_t primitive, unsigned point);

  const MeshMaps& maps_;
  const bool splitByTag_;
  const std::size_t indexCount_;
  std::size_t uvBase_ = 0, tangentBase_ = 0, stride_ = 0;
  std::vector<PrimitiveBuild> primitives_;
  std::uint32_t lastPrimitive_ = 0;

  // The vertices made for each point, as a linked list through `vertexNext_`.
  std::vector<std::uint32_t> pointHead_;
  std::vector<std::uint32_t> vertexNext_;
  std::vector<std::uint32_t> vertexPrimitive_;
  std::vector<std::uint32_t> vertexLocal_;

  std::vector<float> corner_;  // scratch: the values of the corner being added
  // Scratch per polygon: its points and the vertex each got, so that a point
  // shared by several of the polygon's triangles is looked at once.
  std::vector<unsigned> slotPoints_;
  std::vector<std::uint32_t> slotVertices_;
};
