#include "mesh_builder.h"

#include <cstring>

namespace {
constexpr std::uint32_t kEnd = 0xffffffffu;
constexpr unsigned kRememberedSlots = 32;
}

MeshBuilder::MeshBuilder(const MeshMaps& maps, unsigned pointCount, std::size_t indexCount, bool splitByTag)
    : maps_(maps), splitByTag_(splitByTag), indexCount_(indexCount), pointHead_(pointCount, kEnd) {
  uvBase_ = 4 * maps.colours.size();
  tangentBase_ = uvBase_ + 3 * maps.uvs.size();
  stride_ = tangentBase_ + 6 * maps.tangentBases.size();
  corner_.resize(stride_);
  // Most meshes have about one vertex per point; growing by doubling costs
  // more than the memory reserved here.
  vertexNext_.reserve(pointCount);
  vertexPrimitive_.reserve(pointCount);
  vertexLocal_.reserve(pointCount);
}

PrimitiveBuild& MeshBuilder::newPrimitive() {
  primitives_.emplace_back();
  PrimitiveBuild& build = primitives_.back();
  if (primitives_.size() == 1) {
    // The first primitive is usually the only one.
    const std::size_t vertices = pointHead_.size();
    build.indices.reserve(indexCount_);
    build.vertexPoint.reserve(vertices);
    build.normals.reserve(3 * vertices);
    build.values.reserve(stride_ * vertices);
  }
  return build;
}

std::uint32_t MeshBuilder::primitiveFor(const char* tag) {
  if (!splitByTag_) {
    if (primitives_.empty()) newPrimitive();
    return 0;
  }
  // Neighbouring polygons mostly share their material: try the last one first.
  if (!primitives_.empty() && primitives_[lastPrimitive_].tag == tag) return lastPrimitive_;
  for (std::uint32_t i = 0; i < primitives_.size(); ++i)
    if (primitives_[i].tag == tag) return lastPrimitive_ = i;
  newPrimitive().tag = tag;
  return lastPrimitive_ = static_cast<std::uint32_t>(primitives_.size() - 1);
}

VxResult MeshBuilder::Polygon(const IVxPolygon& polygon) {
  const char* tag = polygon.Tag(VX_PTAG_MATERIAL);
  const std::uint32_t primitive = primitiveFor(tag ? tag : "Default");
  std::vector<std::uint32_t>& indices = primitives_[primitive].indices;

  // Large polygons skip the per-slot memory: its linear search would cost more than it saves.
  const unsigned vertexCount = polygon.VertexCount();
  const unsigned slots = vertexCount <= kRememberedSlots ? vertexCount : 0;
  slotPoints_.resize(slots);
  slotVertices_.assign(slots, kEnd);
  for (unsigned slot = 0; slot < slots; ++slot) slotPoints_[slot] = polygon.PointByIndex(slot);

  const unsigned triangles = polygon.TriangleCount();
  for (unsigned t = 0; t < triangles; ++t) {
    unsigned points[3];
    if (VxFailed(polygon.Triangle(t, points))) continue;
    for (unsigned point : points) {
      if (point >= pointHead_.size()) return VXR_OUTOFBOUNDS;
      // Polygons are small: a linear search finds the point's slot.
      unsigned slot = 0;
      while (slot < slots && slotPoints_[slot] != point) ++slot;
      if (slot == slots) {
        indices.push_back(vertexFor(polygon, primitive, point));
        continue;
      }
      if (slotVertices_[slot] == kEnd) slotVertices_[slot] = vertexFor(polygon, primitive, point);
      indices.push_back(slotVertices_[slot]);
    }
  }
  return VXR_OK;
}

std::uint32_t MeshBuilder::vertexFor(const IVxPolygon& polygon, std::uint32_t primitive, unsigned point) {
  // The normal: the stored map's value at the corner, else the host's smoothed one.
  double normal[3] = {0.0, 0.0, 0.0};
  float stored[6];
  if (maps_.normal != VX_MAP_NONE && VxOk(polygon.MapEvaluate(maps_.normal, point, stored))) {
    normal[0] = stored[0], normal[1] = stored[1], normal[2] = stored[2];
  } else {
    polygon.CornerNormal(point, normal);
  }

  float* value = corner_.data();
  for (std::size_t i = 0; i < maps_.colours.size(); ++i, value += 4) {
    value[0] = value[1] = value[2] = value[3] = 0.0f;
    if (VxFailed(polygon.MapEvaluate(maps_.colours[i], point, value))) continue;
    if (!maps_.colourHasAlpha[i]) value[3] = 1.0f;
  }
  for (VxMapID uv : maps_.uvs) {
    value[0] = value[1] = 0.0f;
    value[2] = VxOk(polygon.MapEvaluate(uv, point, value)) ? 1.0f : 0.0f;
    value += 3;
  }
  for (VxMapID basis : maps_.tangentBases) {
    std::memset(value, 0, 6 * sizeof(float));
    polygon.MapEvaluate(basis, point, value);
    value += 6;
  }

  // Reuse a vertex of this point in this primitive whose values are all equal.
  PrimitiveBuild& build = primitives_[primitive];
  for (std::uint32_t v = pointHead_[point]; v != kEnd; v = vertexNext_[v]) {
    if (vertexPrimitive_[v] != primitive) continue;
    const std::uint32_t local = vertexLocal_[v];
    const double* n = &build.normals[3 * std::size_t(local)];
    if (n[0] != normal[0] || n[1] != normal[1] || n[2] != normal[2]) continue;
    const float* values = build.values.data() + stride_ * local;
    bool same = true;
    for (std::size_t k = 0; k < stride_ && same; ++k) same = values[k] == corner_[k];
    if (same) return local;
  }

  const std::uint32_t local = static_cast<std::uint32_t>(build.vertexPoint.size());
  build.vertexPoint.push_back(point);
  build.normals.insert(build.normals.end(), normal, normal + 3);
  build.values.insert(build.values.end(), corner_.begin(), corner_.end());

  vertexNext_.push_back(pointHead_[point]);
  vertexPrimitive_.push_back(primitive);
  vertexLocal_.push_back(local);
  pointHead_[point] = static_cast<std::uint32_t>(vertexNext_.size() - 1);
  return local;
}
