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

  void readCorners(const unsigned* points, unsigned count, double* normals, float* values,
                   std::size_t stride) override {
    const CVxPolygon& polygon = *polygon_;
    // One host call per map for the whole polygon, where the host can.
    std::size_t offset = 0;
    if (maps_.normal != VX_MAP_NONE) {
      if (!read(polygon, maps_.normal, count)) return CornerReader::readCorners(points, count, normals, values, stride);
      for (unsigned c = 0; c < count; ++c) {
        if (found_[c]) {
          for (int k = 0; k < 3; ++k) normals[3 * c + k] = scratch_[3 * c + k];
        } else {
          polygon.cornerNormal(points[c], normals + 3 * std::size_t(c));
        }
      }
    } else {
      for (unsigned c = 0; c < count; ++c) polygon.cornerNormal(points[c], normals + 3 * std::size_t(c));
    }

    for (std::size_t i = 0; i < maps_.colours.size(); ++i, offset += 4) {
      const unsigned dimension = maps_.colourHasAlpha[i] ? 4 : 3;
      if (!read(polygon, maps_.colours[i], count))
        return CornerReader::readCorners(points, count, normals, values, stride);
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        if (!found_[c]) {
          out[0] = out[1] = out[2] = out[3] = 0.0f;
          continue;
        }
        const float* in = &scratch_[std::size_t(dimension) * c];
        out[0] = in[0], out[1] = in[1], out[2] = in[2];
        out[3] = dimension == 4 ? in[3] : 1.0f;
      }
    }
    for (VxMapID uv : maps_.uvs) {
      if (!read(polygon, uv, count)) return CornerReader::readCorners(points, count, normals, values, stride);
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        const bool has = found_[c] != 0;
        out[0] = has ? scratch_[2 * c] : 0.0f;
        out[1] = has ? scratch_[2 * c + 1] : 0.0f;
        out[2] = has ? 1.0f : 0.0f;
      }
      offset += 3;
    }
    for (VxMapID basis : maps_.tangentBases) {
      if (!read(polygon, basis, count)) return CornerReader::readCorners(points, count, normals, values, stride);
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        for (int k = 0; k < 6; ++k) out[k] = found_[c] ? scratch_[6 * c + k] : 0.0f;
      }
      offset += 6;
    }
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
  // The map's values at every corner into scratch_ and found_; false when the host cannot.
  bool read(const CVxPolygon& polygon, VxMapID map, unsigned count) {
    // Sized for the widest map, so reading the next map never refills them.
    if (found_.size() < count) {
      scratch_.resize(6 * std::size_t(count));
      found_.resize(count);
    }
    return polygon.mapValues(map, scratch_.data(), found_.data());
  }

  const MeshMaps& maps_;
  MeshBuilder& builder_;
  MeshWalk& walk_;
  const CVxPolygon* polygon_ = nullptr;
  std::vector<unsigned> points_;
  std::vector<unsigned> triangles_;
  std::vector<float> scratch_;
  std::vector<unsigned char> found_;
};

}  // namespace

MeshWalk walkMesh(const CVxMesh& mesh, const MeshMaps& maps, MeshBuilder& builder) {
  MeshWalk walk;
  PolygonFeeder feeder(maps, builder, walk);
  walk.complete = mesh.visitPolygons(feeder);
  return walk;
}
