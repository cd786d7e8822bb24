#include <algorithm>
#include <initializer_list>

#include "gltf/document_impl.h"
#include "gltf/write_tables.h"

using gltf::Value;

std::uint32_t GltfDocument::root() const { return 0; }

std::uint32_t GltfDocument::addNode(std::uint32_t parent, const char* name) {
  Impl& d = *impl_;
  if (!d.validNode(parent)) return kNone;
  const auto handle = static_cast<std::uint32_t>(d.nodes.size());
  gltf::Node node;
  node.name = name ? name : "";
  node.parent = parent;
  d.nodes.push_back(std::move(node));
  d.nodes[parent].children.push_back(handle);
  d.nodeByName.emplace(d.nodes.back().name, handle);  // keeps the first of a name
  return handle;
}

void GltfDocument::setNodeMatrix(std::uint32_t node, const double m[16]) {
  Impl& d = *impl_;
  if (node == 0 || !d.validNode(node) || !m) return;
  std::copy(m, m + 16, d.nodes[node].matrix);
  d.nodes[node].hasMatrix = true;
}

void GltfDocument::setNodeAnimated(std::uint32_t node) {
  if (node != 0 && impl_->validNode(node)) impl_->nodes[node].animated = true;
}

void GltfDocument::setNodeTrs(std::uint32_t node, const GltfTrs& parts) {
  if (node == 0 || !impl_->validNode(node)) return;
  impl_->nodes[node].hasTrs = true;
  impl_->nodes[node].trs = parts;
}

void GltfDocument::setNodeMesh(std::uint32_t node, std::uint32_t mesh) {
  Impl& d = *impl_;
  if (node != 0 && d.validNode(node) && (mesh == kNone || d.validMesh(mesh))) d.nodes[node].mesh = mesh;
}

void GltfDocument::setNodeCamera(std::uint32_t node, std::uint32_t camera) {
  Impl& d = *impl_;
  if (node != 0 && d.validNode(node) && (camera == kNone || camera < d.cameras.Size())) d.nodes[node].camera = camera;
}

void GltfDocument::setNodeSkin(std::uint32_t node, std::uint32_t skin) {
  Impl& d = *impl_;
  if (node != 0 && d.validNode(node) && (skin == kNone || skin < d.skins.size())) d.nodes[node].skin = skin;
}

std::uint32_t GltfDocument::findNode(const char* name) const {
  const auto found = impl_->nodeByName.find(name ? name : "");
  return found == impl_->nodeByName.end() ? kNone : found->second;
}

namespace gltf {
namespace {

// Compared as written, after rounding, with no tolerance.
bool isIdentity(const double m[16]) {
  for (int i = 0; i < 16; ++i) {
    if (toFloat(m[i]) != (i % 5 == 0 ? 1.0f : 0.0f)) return false;
  }
  return true;
}

void addTransform(const GltfDocument::Impl& d, const Node& node, bool skinned, Value& object, Allocator& allocator) {
  const bool trs = node.animated || (skinned && d.settings.skinnedMeshInWS == 1);
  if (trs) {
    const GltfTrs parts = gltfDecompose(node.matrix);
    addMember(object, "rotation", numbers(parts.rotation, 4, allocator), allocator);
    addMember(object, "translation", numbers(parts.translation, 3, allocator), allocator);
    addMember(object, "scale", numbers(parts.scale, 3, allocator), allocator);
  } else if (node.hasTrs) {
    // glTF's defaults are left out, as for an identity matrix.
    const GltfTrs& parts = node.trs;
    const auto is = [](const double* v, std::initializer_list<float> expected) {
      return std::equal(expected.begin(), expected.end(), v, [](float e, double x) { return toFloat(x) == e; });
    };
    if (!is(parts.translation, {0, 0, 0}))
      addMember(object, "translation", numbers(parts.translation, 3, allocator), allocator);
    if (!is(parts.rotation, {0, 0, 0, 1})) addMember(object, "rotation", numbers(parts.rotation, 4, allocator), allocator);
    if (!is(parts.scale, {1, 1, 1})) addMember(object, "scale", numbers(parts.scale, 3, allocator), allocator);
  } else if (node.hasMatrix && !isIdentity(node.matrix)) {
    addMember(object, "matrix", numbers(node.matrix, 16, allocator), allocator);
  }
}

}  // namespace

void buildNodes(const GltfDocument::Impl& d, WriteTables& tables, Value& nodes, Value& sceneNodes,
                Allocator& allocator) {
  // Pre-order: a node is numbered before any of its children, each child
  // followed at once by its own subtree.
  tables.nodeIndex.assign(d.nodes.size(), kGltfNone);
  std::vector<std::uint32_t> order;
  order.reserve(d.nodes.size());
  std::vector<std::uint32_t> stack(d.nodes[0].children.rbegin(), d.nodes[0].children.rend());
  while (!stack.empty()) {
    const std::uint32_t handle = stack.back();
    stack.pop_back();
    tables.nodeIndex[handle] = static_cast<std::uint32_t>(order.size());
    order.push_back(handle);
    const auto& children = d.nodes[handle].children;
    stack.insert(stack.end(), children.rbegin(), children.rend());
  }

  nodes.SetArray();
  nodes.Reserve(static_cast<rapidjson::SizeType>(order.size()), allocator);
  for (const std::uint32_t handle : order) {
    const Node& node = d.nodes[handle];
    const std::uint32_t mesh = node.mesh == kGltfNone ? kGltfNone : tables.meshIndex[node.mesh];
    const std::uint32_t skin = node.skin == kGltfNone ? kGltfNone : tables.skinIndex[node.skin];
    Value object(rapidjson::kObjectType);
    addMember(object, "name", text(node.name, allocator), allocator);
    addTransform(d, node, skin != kGltfNone, object, allocator);
    if (mesh != kGltfNone) addMember(object, "mesh", mesh, allocator);
    if (node.camera != kGltfNone) addMember(object, "camera", node.camera, allocator);
    if (!node.children.empty()) {
      Value children(rapidjson::kArrayType);
      for (const std::uint32_t child : node.children) children.PushBack(tables.nodeIndex[child], allocator);
      addMember(object, "children", std::move(children), allocator);
    }
    if (skin != kGltfNone) addMember(object, "skin", skin, allocator);
    nodes.PushBack(object, allocator);
  }

  sceneNodes.SetArray();
  for (const std::uint32_t handle : d.nodes[0].children) sceneNodes.PushBack(tables.nodeIndex[handle], allocator);
}

}  // namespace gltf
