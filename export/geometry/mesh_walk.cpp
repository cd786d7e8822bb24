#include "mesh_walk.h"

#include <cstring>
#include <vector>

namespace {

// One map read from the host as arrays, and the walk's place among its corner values.
struct MapCursor {
  VxMapArrays arrays;
  std::size_t next = 0;  // the first corner entry not before the current polygon
};

class PolygonFeeder : public CVxPolygonVisitor, public CornerReader {
 public:
  PolygonFeeder(const CVxMesh& mesh, const MeshMaps& maps, MeshBuilder& builder, MeshWalk& walk)
      : maps_(maps), builder_(builder), walk_(walk) {
    // The maps in the order of the corner layout, the normal first.
    std::vector<VxMapID> ids;
    if (maps.normal != VX_MAP_NONE) ids.push_back(maps.normal);
    ids.insert(ids.end(), maps.colours.begin(), maps.colours.end());
    ids.insert(ids.end(), maps.uvs.begin(), maps.uvs.end());
    ids.insert(ids.end(), maps.tangentBases.begin(), maps.tangentBases.end());
    cursors_.resize(ids.size());
    fromArrays_ = true;
    for (std::size_t i = 0; i < ids.size() && fromArrays_; ++i) fromArrays_ = mesh.mapArrays(ids[i], cursors_[i].arrays);
  }

  bool polygon(const CVxPolygon& polygon) override {
    ++walk_.polygonsVisited;
    const unsigned vertexCount = polygon.vertexCount();
    firstCorner_ = nextCorner_;
    nextCorner_ += vertexCount;
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
    if (fromArrays_ && count == polygon.vertexCount()) return readFromArrays(points, count, normals, values, stride);
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
  // The same as the host's per-polygon reads, looked up in the maps' arrays.
  void readFromArrays(const unsigned* points, unsigned count, double* normals, float* values, std::size_t stride) {
    MapCursor* cursor = cursors_.data();
    if (maps_.normal != VX_MAP_NONE) {
      const Corners corners = cornersOf(*cursor, count);
      for (unsigned c = 0; c < count; ++c) {
        double* normal = normals + 3 * std::size_t(c);
        if (const float* in = valueAt(*cursor, corners, c, points[c])) {
          normal[0] = in[0], normal[1] = in[1], normal[2] = in[2];
        } else {
          polygon_->cornerNormal(points[c], normal);
        }
      }
      ++cursor;
    } else {
      for (unsigned c = 0; c < count; ++c) polygon_->cornerNormal(points[c], normals + 3 * std::size_t(c));
    }

    std::size_t offset = 0;
    for (std::size_t i = 0; i < maps_.colours.size(); ++i, ++cursor, offset += 4) {
      const Corners corners = cornersOf(*cursor, count);
      const bool alpha = maps_.colourHasAlpha[i];
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        const float* in = valueAt(*cursor, corners, c, points[c]);
        if (!in) {
          out[0] = out[1] = out[2] = out[3] = 0.0f;
          continue;
        }
        out[0] = in[0], out[1] = in[1], out[2] = in[2];
        out[3] = alpha ? in[3] : 1.0f;
      }
    }
    for (std::size_t i = 0; i < maps_.uvs.size(); ++i, ++cursor, offset += 3) {
      const Corners corners = cornersOf(*cursor, count);
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        const float* in = valueAt(*cursor, corners, c, points[c]);
        out[0] = in ? in[0] : 0.0f;
        out[1] = in ? in[1] : 0.0f;
        out[2] = in ? 1.0f : 0.0f;
      }
    }
    for (std::size_t i = 0; i < maps_.tangentBases.size(); ++i, ++cursor, offset += 6) {
      const Corners corners = cornersOf(*cursor, count);
      for (unsigned c = 0; c < count; ++c) {
        float* out = values + stride * c + offset;
        const float* in = valueAt(*cursor, corners, c, points[c]);
        for (int k = 0; k < 6; ++k) out[k] = in ? in[k] : 0.0f;
      }
    }
  }

  // The entries of a map's corner values that belong to the current polygon.
  struct Corners {
    std::size_t begin, end;
    bool all;  // every corner of the polygon has one: corner c is entry begin + c
  };
  Corners cornersOf(MapCursor& cursor, unsigned count) const {
    const VxMapArrays& a = cursor.arrays;
    while (cursor.next < a.cornerCount && a.cornerIds[cursor.next] < firstCorner_) ++cursor.next;
    std::size_t end = cursor.next;
    while (end < a.cornerCount && a.cornerIds[end] < firstCorner_ + count) ++end;
    return {cursor.next, end, end - cursor.next == count};
  }
  // The corner's own value, else its point's, else null.
  const float* valueAt(const MapCursor& cursor, const Corners& corners, unsigned slot, unsigned point) const {
    const VxMapArrays& a = cursor.arrays;
    if (corners.all) return a.cornerValues + (corners.begin + slot) * a.dimension;
    for (std::size_t i = corners.begin; i < corners.end; ++i)
      if (a.cornerIds[i] == firstCorner_ + slot) return a.cornerValues + i * a.dimension;
    if (point < a.pointCount && (a.pointHas[point >> 6] >> (point & 63) & 1u))
      return a.pointValues + std::size_t(point) * a.dimension;
    return nullptr;
  }

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
  bool fromArrays_ = false;
  std::vector<MapCursor> cursors_;  // the normal map's, then in the corner layout's order
  std::uint32_t firstCorner_ = 0, nextCorner_ = 0;  // the current polygon's first corner, the next one's
  std::vector<unsigned> points_;
  std::vector<unsigned> triangles_;
  std::vector<float> scratch_;
  std::vector<unsigned char> found_;
};

}  // namespace

MeshWalk walkMesh(const CVxMesh& mesh, const MeshMaps& maps, MeshBuilder& builder) {
  MeshWalk walk;
  PolygonFeeder feeder(mesh, maps, builder, walk);
  walk.complete = mesh.visitPolygons(feeder);
  return walk;
}
