#include "vertex_attributes.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace {

struct Vec3 {
  double x, y, z;
};
double dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 cross(const Vec3& a, const Vec3& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
Vec3 scaled(const Vec3& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
Vec3 minus(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

// Unit length, or false when the vector has no usable direction.
bool normalise(Vec3& v) {
  const double length = std::sqrt(dot(v, v));
  if (!(length > 1e-20) || !std::isfinite(length)) return false;
  v = scaled(v, 1.0 / length);
  return true;
}

// Any unit vector at right angles to the unit vector n.
Vec3 perpendicular(const Vec3& n) {
  Vec3 axis = std::fabs(n.x) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
  Vec3 t = cross(axis, n);
  normalise(t);
  return t;
}

float clampUnit(float value) { return value > 0.0f ? (value < 1.0f ? value : 1.0f) : 0.0f; }

// glTF wants unit normals; a zero or broken one points up rather than nowhere.
Vec3 unitNormal(const double* n) {
  Vec3 v{n[0], n[1], n[2]};
  if (!normalise(v)) v = {0.0, 0.0, 1.0};
  return v;
}

}  // namespace

std::vector<float> readPositions(const CVxMesh& mesh) {
  const unsigned count = mesh.pointCount();
  std::vector<float> positions(3 * std::size_t(count), 0.0f);
  double position[3];
  for (unsigned point = 0; point < count; ++point) {
    if (!mesh.pointPosition(point, position)) continue;
    for (int axis = 0; axis < 3; ++axis) positions[3 * std::size_t(point) + axis] = static_cast<float>(position[axis]);
  }
  return positions;
}

std::vector<GltfAttribute> writeVertexAttributes(GltfDocument& document, const CornerLayout& layout,
                                                 const PrimitiveBuild& build, const std::vector<float>& positions) {
  const std::size_t vertices = build.vertexPoint.size();
  const std::size_t stride = layout.stride();
  std::vector<GltfAttribute> attributes;
  // Each attribute is filled once into an array the document then keeps as its block.
  std::vector<float> data(3 * vertices);
  for (std::size_t v = 0; v < vertices; ++v)
    std::copy_n(&positions[3 * std::size_t(build.vertexPoint[v])], 3, &data[3 * v]);
  attributes.push_back({"POSITION", document.addFloatAccessor(GltfAccessorType::Vec3, std::move(data), true)});

  data = std::vector<float>(3 * vertices);
  for (std::size_t v = 0; v < vertices; ++v) {
    const Vec3 n = unitNormal(&build.normals[3 * v]);
    data[3 * v] = float(n.x), data[3 * v + 1] = float(n.y), data[3 * v + 2] = float(n.z);
  }
  attributes.push_back({"NORMAL", document.addFloatAccessor(GltfAccessorType::Vec3, std::move(data), false)});

  // glTF colours lie in 0..1; the host's may be brighter than white or negative.
  for (std::size_t set = 0; set < layout.colours; ++set) {
    data = std::vector<float>(4 * vertices);
    for (std::size_t v = 0; v < vertices; ++v) {
      const float* colour = &build.values[v * stride + layout.colourOffset(set)];
      for (int c = 0; c < 4; ++c) data[4 * v + c] = clampUnit(colour[c]);
    }
    attributes.push_back(
        {"COLOR_" + std::to_string(set), document.addFloatAccessor(GltfAccessorType::Vec4, std::move(data), false)});
  }

  // The host's texture space is glTF's: (0, 0) at the image's top left, v running down.
  for (std::size_t set = 0; set < layout.uvs; ++set) {
    data = std::vector<float>(2 * vertices);
    for (std::size_t v = 0; v < vertices; ++v)
      std::copy_n(&build.values[v * stride + layout.uvOffset(set)], 2, &data[2 * v]);
    attributes.push_back(
        {"TEXCOORD_" + std::to_string(set), document.addFloatAccessor(GltfAccessorType::Vec2, std::move(data), false)});
  }

  // glTF has one tangent set: the first basis map gives it. The tangent is
  // made unit and square to the normal; w tells the bitangent's side.
  if (layout.tangentBases != 0) {
    data = std::vector<float>(4 * vertices);
    for (std::size_t v = 0; v < vertices; ++v) {
      const float* basis = &build.values[v * stride + layout.tangentOffset(0)];
      const Vec3 n = unitNormal(&build.normals[3 * v]);
      const Vec3 bitangent{basis[3], basis[4], basis[5]};
      Vec3 tangent{basis[0], basis[1], basis[2]};
      tangent = minus(tangent, scaled(n, dot(n, tangent)));
      if (!normalise(tangent)) tangent = perpendicular(n);
      const float w = dot(cross(n, tangent), bitangent) < 0.0 ? -1.0f : 1.0f;
      data[4 * v] = float(tangent.x), data[4 * v + 1] = float(tangent.y), data[4 * v + 2] = float(tangent.z);
      data[4 * v + 3] = w;
    }
    attributes.push_back({"TANGENT", document.addFloatAccessor(GltfAccessorType::Vec4, std::move(data), false)});
  }
  return attributes;
}
