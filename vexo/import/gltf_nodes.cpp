// glTF nodes as locators: the node graph's checks, each node's item and
// transform stack, and cameras.
#include <cmath>

#include "engine/item.h"
#include "import/gltf_import.h"
#include "import/gltf_transform.h"

namespace vexo {
namespace {

bool inRange(int index, std::size_t size) { return index >= 0 && static_cast<std::size_t>(index) < size; }

// The host's transform items, in the order the stack applies them.
const char* const kPosition[3] = {"pos.X", "pos.Y", "pos.Z"};
const char* const kRotation[3] = {"rot.X", "rot.Y", "rot.Z"};
const char* const kScale[3] = {"scl.X", "scl.Y", "scl.Z"};

}  // namespace

// Every index a node holds is checked here, and the graph must be a forest:
// a node with two parents or a node that is its own ancestor is an error.
bool GltfImport::checkNodeGraph(std::vector<int>& roots) {
  const std::size_t count = model_.nodes.size();
  std::vector<int> parent(count, -1);
  for (std::size_t i = 0; i < count; ++i) {
    const tinygltf::Node& node = model_.nodes[i];
    const std::string what = "node " + std::to_string(i);
    if (node.mesh != -1 && !inRange(node.mesh, model_.meshes.size()))
      return fail(what + " names mesh " + std::to_string(node.mesh) + ", which does not exist");
    if (node.camera != -1 && !inRange(node.camera, model_.cameras.size()))
      return fail(what + " names camera " + std::to_string(node.camera) + ", which does not exist");
    if (node.skin != -1 && !inRange(node.skin, model_.skins.size()))
      return fail(what + " names skin " + std::to_string(node.skin) + ", which does not exist");
    for (int child : node.children) {
      if (!inRange(child, count))
        return fail(what + " names child node " + std::to_string(child) + ", which does not exist");
      if (child == static_cast<int>(i)) return fail(what + " is its own child");
      if (parent[static_cast<std::size_t>(child)] != -1)
        return fail("node " + std::to_string(child) + " has two parents, nodes " +
                    std::to_string(parent[static_cast<std::size_t>(child)]) + " and " + std::to_string(i));
      parent[static_cast<std::size_t>(child)] = static_cast<int>(i);
    }
  }
  // With one parent each, a loop is a chain of parents that never ends.
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t steps = 0;
    for (int at = parent[i]; at != -1; at = parent[static_cast<std::size_t>(at)])
      if (++steps > count) return fail("node " + std::to_string(i) + " is its own ancestor: the nodes form a loop");
  }
  if (model_.scenes.empty()) {
    if (count > 0) warn("the file has no scene; every node without a parent is loaded");
    for (std::size_t i = 0; i < count; ++i)
      if (parent[i] == -1) roots.push_back(static_cast<int>(i));
    return true;
  }
  const int sceneIndex = model_.defaultScene >= 0 ? model_.defaultScene : 0;
  if (!inRange(sceneIndex, model_.scenes.size()))
    return fail("the default scene " + std::to_string(sceneIndex) + " does not exist");
  if (model_.scenes.size() > 1) warn("the file has " + std::to_string(model_.scenes.size()) +
                                     " scenes; only scene " + std::to_string(sceneIndex) + " is loaded");
  for (int root : model_.scenes[static_cast<std::size_t>(sceneIndex)].nodes) {
    if (!inRange(root, count))
      return fail("scene " + std::to_string(sceneIndex) + " names node " + std::to_string(root) + ", which does not exist");
    if (parent[static_cast<std::size_t>(root)] != -1)
      return fail("scene " + std::to_string(sceneIndex) + " names node " + std::to_string(root) +
                  " as a root, but it is a child of node " + std::to_string(parent[static_cast<std::size_t>(root)]));
    roots.push_back(root);
  }
  return true;
}

bool GltfImport::addNode(int index, Item* parent) {
  const tinygltf::Node& node = model_.nodes[static_cast<std::size_t>(index)];
  const std::string name = nameOr(node.name, "Node" + std::to_string(index));
  const bool hasMesh = node.mesh >= 0 && options_.loadGeometry;
  const bool hasCamera = node.camera >= 0 && options_.loadCameras;
  // A mesh shown by several unskinned nodes is one host mesh and its instances.
  const bool instance = hasMesh && node.skin < 0 && meshSources_.count(node.mesh);
  const char* typeName = instance ? "meshInst" : hasMesh ? "mesh" : hasCamera ? "camera" : "locator";
  Item* item = scene_.addItem(type(typeName), name, freeIdent(name), parent, StackStart::Empty);
  if (!item) return fail("cannot add an item for node " + std::to_string(index));
  nodeItems_[static_cast<std::size_t>(index)] = item;
  if (!addTransforms(node, *item)) return false;

  if (instance) {
    std::string problem;
    if (!scene_.meshes().setSource(*item, *meshSources_[node.mesh], &problem))
      return fail("node " + std::to_string(index) + ": " + problem);
  } else if (hasMesh) {
    if (node.skin < 0) meshSources_[node.mesh] = item;
    if (!fillMesh(node, *item)) return false;
  }
  if (hasCamera) {
    Item* camera = item;
    // A node with a mesh and a camera keeps the camera on a child of its own.
    if (hasMesh) {
      const std::string cameraName = name + " Camera";
      camera = scene_.addItem(type("camera"), cameraName, freeIdent(cameraName), item);
      if (!camera) return fail("cannot add a camera for node " + std::to_string(index));
    }
    setCamera(model_.cameras[static_cast<std::size_t>(node.camera)], *camera);
  }
  if (node.camera >= 0 && !options_.loadCameras) warn("cameras are not loaded (loadCameras is off)");
  if (node.mesh >= 0 && !options_.loadGeometry) warn("meshes are not loaded (loadGeometry is off)");
  if (node.extensions.count("KHR_lights_punctual"))
    warn("lights are not loaded: the host's lights are not filled from glTF");
  if (!node.weights.empty()) warn("node " + name + ": morph target weights are left out");

  for (int child : node.children)
    if (!addNode(child, item)) return false;
  return true;
}

bool GltfImport::addTransforms(const tinygltf::Node& node, Item& item) {
  StackParts parts;
  if (node.matrix.size() == 16) {
    Matrix m;
    for (int i = 0; i < 16; ++i) m[static_cast<std::size_t>(i)] = node.matrix[static_cast<std::size_t>(i)];
    for (double v : m)
      if (!std::isfinite(v)) return fail("node " + item.name() + " has a matrix with a value that is not finite");
    if (!decomposeMatrix(m, parts))
      warn("node " + item.name() + " has a matrix without an inverse; it is loaded as its axis lengths, unrotated");
  } else {
    if (node.scale.size() == 3) parts.scale = {node.scale[0], node.scale[1], node.scale[2]};
    if (node.rotation.size() == 4)
      parts.rotation = eulerFromQuaternion({node.rotation[0], node.rotation[1], node.rotation[2], node.rotation[3]});
    if (node.translation.size() == 3) parts.translation = {node.translation[0], node.translation[1], node.translation[2]};
    for (int i = 0; i < 3; ++i)
      if (!std::isfinite(parts.scale[static_cast<std::size_t>(i)]) ||
          !std::isfinite(parts.rotation[static_cast<std::size_t>(i)]) ||
          !std::isfinite(parts.translation[static_cast<std::size_t>(i)]))
        return fail("node " + item.name() + " has a transform with a value that is not finite");
  }
  auto add = [&](TransformKind kind, const char* name, std::optional<MainTransform> main) {
    Item* transform = scene_.addTransform(item, scene_.locatorTypes().transformType(kind), name, {}, main);
    if (!transform) fail("cannot add the transform " + std::string(name) + " of node " + item.name());
    return transform;
  };
  if (parts.sheared) {
    Item* shear = add(TransformKind::Shear, "Shear", std::nullopt);
    if (!shear) return false;
    setChannel(*shear, "shr.XY", parts.shearXY);
    setChannel(*shear, "shr.XZ", parts.shearXZ);
    setChannel(*shear, "shr.YZ", parts.shearYZ);
  }
  Item* scale = add(TransformKind::Scale, "Scale", MainTransform::Scale);
  Item* rotation = scale ? add(TransformKind::Rotation, "Rotation", MainTransform::Rotation) : nullptr;
  Item* position = rotation ? add(TransformKind::Translation, "Position", MainTransform::Position) : nullptr;
  if (!position) return false;
  for (std::size_t i = 0; i < 3; ++i) {
    setChannel(*scale, kScale[i], parts.scale[i]);
    setChannel(*rotation, kRotation[i], parts.rotation[i]);
    setChannel(*position, kPosition[i], parts.translation[i] * unitScale_);
  }
  return true;
}

// The host's camera has a lens and a film back: the focal length stays at the
// host's 50 mm and the film height gives glTF's vertical field of view.
void GltfImport::setCamera(const tinygltf::Camera& camera, Item& item) {
  const double focal = 0.05;
  setChannel(item, "focalLen", focal);
  if (camera.type == "perspective") {
    const tinygltf::PerspectiveCamera& p = camera.perspective;
    if (p.yfov > 0 && p.yfov < std::acos(-1.0)) {
      const double height = 2 * focal * std::tan(p.yfov / 2);
      setChannel(item, "apertureY", height);
      if (p.aspectRatio > 0) setChannel(item, "apertureX", height * p.aspectRatio);
    }
    if (p.znear > 0) setChannel(item, "clipNear", p.znear * unitScale_);
    if (p.zfar > 0) setChannel(item, "clipFar", p.zfar * unitScale_);
    return;
  }
  warn("camera " + item.name() + " is " + camera.type +
       "; the host's cameras are perspective, so it is loaded with the host's lens and its clipping planes");
  if (camera.orthographic.znear > 0) setChannel(item, "clipNear", camera.orthographic.znear * unitScale_);
  if (camera.orthographic.zfar > 0) setChannel(item, "clipFar", camera.orthographic.zfar * unitScale_);
}

}  // namespace vexo
