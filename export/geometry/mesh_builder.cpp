#include "mesh_builder.h"

namespace {
constexpr std::uint32_t kEnd = 0xffffffffu;
constexpr unsigned kRememberedSlots = 32;
}  // namespace

void CornerReader::readCorners(const unsigned* points, unsigned count, double* normals, float* values,
                               std::size_t stride) {
  for (unsigned i = 0; i < count; ++i) readCorner(points[i], normals + 3 * std::size_t(i), values + stride * i);
}

MeshBuilder::MeshBuilder(const CornerLayout& layout, unsigned pointCount, std::size_t indexCount, bool splitByTag)
    : layout_(layout),
      stride_(layout.stride()),
      splitByTag_(splitByTag),
      indexCount_(indexCount),
      pointHead_(pointCount, kEnd),
      corner_(layout.stride()) {
  // Most meshes have about one vertex per point; growing by doubling costs
  // more than the memory reserved here.
  links_.reserve(pointCount);
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

bool MeshBuilder::addPolygon(const char* tag, const unsigned* points, unsigned pointCount, const unsigned* triangles,
                             unsigned triangleCount, CornerReader& reader) {
  const std::size_t corners = 3 * std::size_t(triangleCount);
  // A polygon without triangles adds nothing, not even an empty primitive.
  if (corners == 0) return true;
  for (std::size_t i = 0; i < corners; ++i)
    if (triangles[i] >= pointHead_.size()) return false;

  const std::uint32_t primitive = primitiveFor(tag);
  std::vector<std::uint32_t>& indices = primitives_[primitive].indices;
  // Large polygons skip the per-slot memory: its linear search would cost more than it saves.
  const unsigned slots = pointCount <= kRememberedSlots ? pointCount : 0;
  slotVertices_.assign(slots, kEnd);
  if (slots != 0) {
    // All of the polygon's corners in one read: a host answers that faster than point by point.
    slotNormals_.assign(3 * std::size_t(slots), 0.0);
    slotValues_.resize(stride_ * slots);
    reader.readCorners(points, slots, slotNormals_.data(), slotValues_.data(), stride_);
  }
  for (std::size_t i = 0; i < corners; ++i) {
    const unsigned point = triangles[i];
    unsigned slot = 0;
    while (slot < slots && points[slot] != point) ++slot;
    if (slot == slots) {
      double normal[3] = {0.0, 0.0, 0.0};
      reader.readCorner(point, normal, corner_.data());
      indices.push_back(vertexFor(primitive, point, normal, corner_.data()));
      continue;
    }
    if (slotVertices_[slot] == kEnd)
      slotVertices_[slot] = vertexFor(primitive, point, &slotNormals_[3 * std::size_t(slot)], slotValues_.data() + stride_ * slot);
    indices.push_back(slotVertices_[slot]);
  }
  return true;
}

std::uint32_t MeshBuilder::vertexFor(std::uint32_t primitive, unsigned point, const double normal[3],
                                     const float* corner) {
  // Reuse a vertex of this point in this primitive whose values are all equal.
  PrimitiveBuild& build = primitives_[primitive];
  for (std::uint32_t v = pointHead_[point]; v != kEnd; v = links_[v].next) {
    if (links_[v].primitive != primitive) continue;
    const std::uint32_t local = links_[v].local;
    const double* n = &build.normals[3 * std::size_t(local)];
    if (n[0] != normal[0] || n[1] != normal[1] || n[2] != normal[2]) continue;
    const float* values = build.values.data() + stride_ * local;
    bool same = true;
    for (std::size_t k = 0; k < stride_ && same; ++k) same = values[k] == corner[k];
    if (same) return local;
  }

  const std::uint32_t local = static_cast<std::uint32_t>(build.vertexPoint.size());
  // Past the vertices reserved, grow by an eighth: a few split vertices
  // (a seam) should not double every array at the very end.
  if (build.vertexPoint.size() == build.vertexPoint.capacity()) {
    const std::size_t vertices = local + local / 8 + 16;
    build.vertexPoint.reserve(vertices);
    build.normals.reserve(3 * vertices);
    build.values.reserve(stride_ * vertices);
  }
  if (links_.size() == links_.capacity()) links_.reserve(links_.size() + links_.size() / 8 + 16);
  build.vertexPoint.push_back(point);
  build.normals.insert(build.normals.end(), normal, normal + 3);
  build.values.insert(build.values.end(), corner, corner + stride_);

  links_.push_back({pointHead_[point], primitive, local});
  pointHead_[point] = static_cast<std::uint32_t>(links_.size() - 1);
  return local;
}
