// glTF meshes as host meshes: every primitive of a node's mesh in one host
// mesh, its triangles tagged with the primitive's material, its attributes as
// vertex maps.
#include <cmath>
#include <cstdint>

#include "engine/item.h"
#include "import/gltf_accessors.h"
#include "import/gltf_import.h"
#include "mesh/mesh_data.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

// UV maps are named so that sorting by name, as the exporter numbers its
// TEXCOORD sets, keeps glTF's order.
std::string colorMapName(int set) { return set == 0 ? "Color" : "Color_" + std::to_string(set); }

// The triangles of a primitive's vertex list: lists as they are, strips and
// fans unrolled with glTF's winding, strip and fan triangles that repeat a
// vertex (their joins) left out.
std::vector<std::uint32_t> triangles(int mode, const std::vector<std::uint32_t>& v) {
  std::vector<std::uint32_t> out;
  const std::size_t n = v.size();
  auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c, bool dropRepeats) {
    if (dropRepeats && (a == b || b == c || a == c)) return;
    out.insert(out.end(), {a, b, c});
  };
  if (mode == TINYGLTF_MODE_TRIANGLES) {
    for (std::size_t i = 0; i + 2 < n; i += 3) add(v[i], v[i + 1], v[i + 2], false);
  } else if (mode == TINYGLTF_MODE_TRIANGLE_STRIP) {
    for (std::size_t i = 0; i + 2 < n; ++i)
      add(v[i], v[i + 1 + i % 2], v[i + 2 - i % 2], true);
  } else if (mode == TINYGLTF_MODE_TRIANGLE_FAN) {
    for (std::size_t i = 0; i + 2 < n; ++i) add(v[i + 1], v[i + 2], v[0], true);
  }
  return out;
}

const char* modeName(int mode) {
  switch (mode) {
    case TINYGLTF_MODE_POINTS: return "points";
    case TINYGLTF_MODE_LINE: return "lines";
    case TINYGLTF_MODE_LINE_LOOP: return "line loops";
    case TINYGLTF_MODE_LINE_STRIP: return "line strips";
    default: return "an unknown mode";
  }
}

int accessorComponents(const tinygltf::Model& model, int accessor) {
  if (accessor < 0 || static_cast<std::size_t>(accessor) >= model.accessors.size()) return 0;
  switch (model.accessors[static_cast<std::size_t>(accessor)].type) {
    case TINYGLTF_TYPE_VEC3: return 3;
    case TINYGLTF_TYPE_VEC4: return 4;
    default: return 0;
  }
}

std::size_t mapFor(MeshData& mesh, std::uint32_t type, const std::string& name) {
  const std::size_t found = mesh.findMap(type, name);
  return found != kNoMap ? found : mesh.addMap(type, name);
}

}  // namespace

bool GltfImport::fillMesh(const tinygltf::Node& node, Item& item) {
  MeshData* mesh = scene_.meshes().ownMesh(item);
  if (!mesh) return fail("node " + item.name() + " cannot hold a mesh");
  const tinygltf::Mesh& source = model_.meshes[static_cast<std::size_t>(node.mesh)];
  std::vector<std::pair<const tinygltf::Primitive*, std::uint32_t>> parts;
  try {
    for (const tinygltf::Primitive& primitive : source.primitives) {
      const std::uint32_t base = static_cast<std::uint32_t>(mesh->pointCount());
      bool added = false;
      if (!addPrimitive(primitive, node.mesh, *mesh, added)) return false;
      if (added) parts.emplace_back(&primitive, base);
    }
  } catch (const MeshError& e) {
    return fail("mesh " + std::to_string(node.mesh) + ": " + e.what());
  }
  if (node.skin >= 0) skinned_.push_back({&node, &item, std::move(parts)});
  return true;
}

bool GltfImport::addPrimitive(const tinygltf::Primitive& primitive, int meshIndex, MeshData& mesh, bool& added) {
  const std::string what = "mesh " + std::to_string(meshIndex);
  if (primitive.extensions.count("KHR_draco_mesh_compression"))
    return fail(what + " is compressed with KHR_draco_mesh_compression, which cannot be loaded");
  if (primitive.mode != TINYGLTF_MODE_TRIANGLES && primitive.mode != TINYGLTF_MODE_TRIANGLE_STRIP &&
      primitive.mode != TINYGLTF_MODE_TRIANGLE_FAN) {
    warn(what + ": a primitive of " + modeName(primitive.mode) + " is left out; the host's meshes hold polygons");
    return true;
  }
  if (!primitive.targets.empty()) warn(what + ": morph targets are left out");
  auto attribute = [&](const std::string& name) {
    auto found = primitive.attributes.find(name);
    return found == primitive.attributes.end() ? -1 : found->second;
  };
  const int positionAccessor = attribute("POSITION");
  if (positionAccessor < 0) return fail(what + " has a primitive without POSITION");
  std::string error;
  std::vector<float> positions;
  if (!readAccessorFloats(model_, positionAccessor, 3, positions, error)) return fail(what + " POSITION: " + error);
  const std::size_t count = positions.size() / 3;

  std::vector<std::uint32_t> vertices;
  if (primitive.indices >= 0) {
    if (!readAccessorIndices(model_, primitive.indices, 1, vertices, error)) return fail(what + " indices: " + error);
    for (std::uint32_t v : vertices)
      if (v >= count)
        return fail(what + ": index " + std::to_string(v) + " is out of range for its " + std::to_string(count) +
                    " vertices");
  } else {
    vertices.resize(count);
    for (std::size_t i = 0; i < count; ++i) vertices[i] = static_cast<std::uint32_t>(i);
  }
  std::vector<std::uint32_t> corners = triangles(primitive.mode, vertices);
  const std::uint32_t base = static_cast<std::uint32_t>(mesh.pointCount());
  std::vector<double> xyz(positions.size());
  for (std::size_t i = 0; i < positions.size(); ++i) xyz[i] = positions[i] * unitScale_;
  mesh.appendPoints(xyz.data(), count);
  for (std::uint32_t& c : corners) c += base;
  const std::uint32_t firstPolygon = static_cast<std::uint32_t>(mesh.polygonCount());
  mesh.appendPolygons(3, corners.data(), corners.size() / 3);
  const std::string tag = options_.loadMaterials ? materialTag(primitive.material) : std::string(kDefaultTag);
  if (tag != kDefaultTag) mesh.setPolygonTags(firstPolygon, corners.size() / 3, VX_PTAG_MATERIAL, tag);
  added = true;

  // Point values, one accessor element per point from `base`.
  auto setPoints = [&](std::size_t map, const std::vector<float>& values) {
    mesh.setPointValues(map, base, count, values.data());
  };
  auto readCount = [&](const char* name, int accessor, int components, std::vector<float>& values) {
    if (!readAccessorFloats(model_, accessor, components, values, error))
      return fail(what + " " + name + ": " + error);
    if (values.size() / static_cast<std::size_t>(components) != count)
      return fail(what + ": " + name + " has " + std::to_string(values.size() / static_cast<std::size_t>(components)) +
                  " elements for " + std::to_string(count) + " positions");
    return true;
  };
  std::vector<float> normals;
  if (options_.loadNormals && attribute("NORMAL") >= 0) {
    if (!readCount("NORMAL", attribute("NORMAL"), 3, normals)) return false;
    setPoints(mapFor(mesh, VX_VMAP_NORMAL, "Normal"), normals);
  }
  for (int set = 0;; ++set) {
    const std::string name = "TEXCOORD_" + std::to_string(set);
    const int accessor = attribute(name);
    if (accessor < 0) break;
    std::vector<float> uvs;
    if (!readCount(name.c_str(), accessor, 2, uvs)) return false;
    setPoints(mapFor(mesh, VX_VMAP_TEXTUREUV, gltfUvMapName(set)), uvs);
  }
  for (int set = 0;; ++set) {
    const std::string name = "COLOR_" + std::to_string(set);
    const int accessor = attribute(name);
    if (accessor < 0) break;
    const int components = accessorComponents(model_, accessor);
    if (components == 0) return fail(what + ": " + name + " is neither VEC3 nor VEC4");
    std::vector<float> colors;
    if (!readCount(name.c_str(), accessor, components, colors)) return false;
    std::vector<float> rgba(count * 4, 1.0f);
    for (std::size_t i = 0; i < count; ++i)
      for (int c = 0; c < components; ++c) rgba[i * 4 + std::size_t(c)] = colors[i * std::size_t(components) + std::size_t(c)];
    setPoints(mapFor(mesh, VX_VMAP_RGBA, colorMapName(set)), rgba);
  }
  if (attribute("TANGENT") >= 0) {
    if (normals.empty()) {
      warn(what + ": tangents are left out where there are no normals to complete their basis");
    } else {
      std::vector<float> tangents;
      if (!readCount("TANGENT", attribute("TANGENT"), 4, tangents)) return false;
      // The host's basis holds the tangent and the bitangent, w * (normal x tangent).
      std::vector<float> basis(count * 6);
      for (std::size_t i = 0; i < count; ++i) {
        const float* n = &normals[i * 3];
        const float* t = &tangents[i * 4];
        const float w = t[3] < 0 ? -1.0f : 1.0f;
        const float b[3] = {n[1] * t[2] - n[2] * t[1], n[2] * t[0] - n[0] * t[2], n[0] * t[1] - n[1] * t[0]};
        for (int c = 0; c < 3; ++c) basis[i * 6 + std::size_t(c)] = t[c], basis[i * 6 + 3 + std::size_t(c)] = w * b[c];
      }
      setPoints(mapFor(mesh, VX_VMAP_TBASIS, "Tangents"), basis);
    }
  }
  return true;
}

}  // namespace vexo
