// Collects a mesh's triangles into glTF primitives: one primitive per
// material tag (or one in all), with one output vertex per distinct
// combination of point, normal and corner values. A plain class: the corner
// values come from a CornerReader, so tests feed it plain arrays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Where each kind of value sits among a corner's floats.
struct CornerLayout {
  std::size_t colours = 0;       // 4 floats each
  std::size_t uvs = 0;           // u, v and a has-value flag (1 or 0)
  std::size_t tangentBases = 0;  // tangent then bitangent, 6 floats each

  std::size_t colourOffset(std::size_t set) const { return 4 * set; }
  std::size_t uvOffset(std::size_t set) const { return 4 * colours + 3 * set; }
  std::size_t tangentOffset(std::size_t set) const { return 4 * colours + 3 * uvs + 6 * set; }
  std::size_t stride() const { return tangentOffset(tangentBases); }
};

// Reads the values of the current polygon's corner at a point.
class CornerReader {
 public:
  virtual ~CornerReader() = default;
  // `values` has room for the layout's stride.
  virtual void readCorner(unsigned point, double normal[3], float* values) = 0;
  // The same for each of the polygon's `count` points at once: 3 normal
  // values and a stride of values per point, in the points' order.
  virtual void readCorners(const unsigned* points, unsigned count, double* normals, float* values, std::size_t stride);
};

struct PrimitiveBuild {
  std::string tag;                         // the polygons' material tag
  std::vector<std::uint32_t> vertexPoint;  // per vertex: its mesh point
  std::vector<double> normals;             // 3 per vertex, as read
  std::vector<float> values;               // per vertex: the corner values, `stride` of them
  std::vector<std::uint32_t> indices;      // 3 per triangle, in the order added
};

class MeshBuilder {
 public:
  // `splitByTag`: one primitive per material tag in order of first use.
  // `indexCount` (3 per triangle expected) sizes the arrays up front.
  MeshBuilder(const CornerLayout& layout, unsigned pointCount, std::size_t indexCount, bool splitByTag);

  // Adds a polygon's triangles (3 points each) to the primitive of its tag.
  // `points` are the polygon's own points: a point that several of its
  // triangles share is read once. False, and nothing added, when a triangle
  // names a point outside the mesh.
  bool addPolygon(const char* tag, const unsigned* points, unsigned pointCount, const unsigned* triangles,
                  unsigned triangleCount, CornerReader& reader);

  const std::vector<PrimitiveBuild>& primitives() const { return primitives_; }
  // Hands the primitives over, leaving none.
  std::vector<PrimitiveBuild> takePrimitives() {
    std::vector<PrimitiveBuild> taken;
    taken.swap(primitives_);
    return taken;
  }
  const CornerLayout& layout() const { return layout_; }

 private:
  std::uint32_t primitiveFor(const char* tag);
  PrimitiveBuild& newPrimitive();
  // The primitive's vertex for the point with these corner values, made when new.
  std::uint32_t vertexFor(std::uint32_t primitive, unsigned point, const double normal[3], const float* values);

  const CornerLayout layout_;
  const std::size_t stride_;
  const bool splitByTag_;
  const std::size_t indexCount_;
  std::vector<PrimitiveBuild> primitives_;
  std::uint32_t lastPrimitive_ = 0;

  // The vertices made for each point, as a linked list through `links_`.
  struct VertexLink {
    std::uint32_t next;       // the point's previous vertex, or none
    std::uint32_t primitive;  // the primitive the vertex is in
    std::uint32_t local;      // its index there
  };
  std::vector<std::uint32_t> pointHead_;
  std::vector<VertexLink> links_;

  std::vector<float> corner_;  // scratch: the values of the corner being added
  // Scratch per polygon: the vertex each of its points got, and their corner values.
  std::vector<std::uint32_t> slotVertices_;
  std::vector<double> slotNormals_;
  std::vector<float> slotValues_;
};
