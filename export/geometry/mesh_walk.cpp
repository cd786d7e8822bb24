#include "mesh_walk.h"

#include <cstring>
#include <vector>

namespace {

class PolygonFeeder : public CVxPolygonVisitor, public CornerReader {
 public:
  PolygonFeeder(const MeshMaps& maps, MeshBuilder& builder, MeshWalk& walk)
      : maps_(maps), builder_(builder), walk_(walk) {}

  bool polygon(const CVxPolygon& polygon) override {
    ++walk_.polygonsVisited;
    const unsigned vertexCount = polygon.vertexCount();
    points_.resize(vertexCount);
    for (unsigned v = 0; v < vertexCount; ++v) points_[v] = polygon.point(v);

    const unsigned triangleCount = polygon.triangleCount();
    triangles_.resize(3 * std::size_t(triangleCount));
    unsigned kept = 0;
    for (unsigned t = 0; t < triangleCount; ++t) {
      if (polygon.triangle(t, &triangles_[3 * std::size_t(kept)]))
        ++kept;
      else
        ++walk_.failedTriangles;
    }
    polygon_ = &polygon;
    const bool added = builder_.addPolygon(polygon.materialTag(), points_.data(), vertexCount, triangles_.data(), kept,
                                           *this);
    polygon_ = nullptr;
    return added;
  }

  void readCorner(unsigned point, double normal[3], float* values) override {
    const CVxPolygon& polygon = *polygon_;
    // The normal: the stored map's value at the corner, else the host's smoothed one.
    float stored[3];
    if (maps_.normal != VX_MAP_NONE && polygon.mapValue(maps_.normal, point, stored)) {
      normal[0] = stored[0], normal[1] = stored[1], normal[2] = stored[2];
    } else {
      polygon.cornerNormal(point, normal);
    }

    for (std::size_t i = 0; i < maps_.colours.size(); ++i, values += 4) {
      values[0] = values[1] = values[2] = values[3] = 0.0f;
      if (!polygon.mapValue(maps_.colours[i], point, values)) continue;
      if (!maps_.colourHasAlpha[i]) values[3] = 1.0f;
    }
    for (VxMapID uv : maps_.uvs) {
      values[0] = values[1] = 0.0f;
      values[2] = polygon.mapValue(uv, point, values) ? 1.0f : 0.0f;
      values += 3;
    }
    for (VxMapID basis : maps_.tangentBases) {
      std::memset(values, 0, 6 * sizeof(float));
      polygon.mapValue(basis, point, values);
      values += 6;
    }
  }

 private:
  const MeshMaps& maps_;
  MeshBuilder& builder_;
  MeshWalk& walk_;
  const CVxPolygon* polygon_ = nullptr;
  std::vector<unsigned> points_;
  std::vector<unsigned> triangles_;
};

}  // namespace

MeshWalk walkMesh(const CVxMesh& mesh, const MeshMaps& maps, MeshBuilder& builder) {
  MeshWalk walk;
  PolygonFeeder feeder(maps, builder, walk);
  walk.complete = mesh.visitPolygons(feeder);
  return walk;
}
