// "influences" and "meshDeformers": the scene graphs that tie deformers to
// their joints and meshes.
#include "scenefile/scene_reader.h"

namespace vexo {
namespace {

using Kind = JsonNode::Kind;

const KeyList kInfluenceKeys = {"item", "joint", "mesh"};
const KeyList kMeshDeformerKeys = {"mesh", "deformers"};

}  // namespace

Item* SceneReader::readItemRef(const JsonNode& node, const std::string& what) {
  if (!expect(node, Kind::String, what)) return nullptr;
  std::string problem;
  Item* item = findItemByRef(scene_, node.text, &problem);
  if (!item) fail(node.pos, what + ": " + problem);
  return item;
}

bool SceneReader::readInfluences(const JsonNode& influences) {
  if (!expect(influences, Kind::Array, "\"influences\"")) return false;
  const TypeCode influenceType = scene_.types().find("influence");
  for (const JsonNode& node : influences.elements) {
    if (!expect(node, Kind::Object, "an influence") || !checkKeys(node, kInfluenceKeys, "in an influence"))
      return false;
    const JsonNode* itemRef = member(node, "item");
    const JsonNode* jointRef = member(node, "joint");
    if (!itemRef || !jointRef) return fail(node.pos, std::string("influence has no ") + (itemRef ? "\"joint\"" : "\"item\""));
    Item* influence = readItemRef(*itemRef, "\"item\"");
    if (!influence) return false;
    if (!scene_.types().derives(influence->typeCode(), influenceType))
      return fail(itemRef->pos, inQuotes(itemRef->text) + " is a \"" + influence->type().name + "\", not an \"influence\"");
    Item* joint = readItemRef(*jointRef, "\"joint\"");
    if (!joint) return false;
    if (!scene_.locatorTypes().isLocator(joint->typeCode()))
      return fail(jointRef->pos, "joint " + inQuotes(jointRef->text) + " is no locator");
    if (scene_.deformGraphs().links(kDeformJointGraph, *influence))
      return fail(itemRef->pos, inQuotes(itemRef->text) + " already binds a joint");
    scene_.deformGraphs().link(kDeformJointGraph, *influence, *joint);
    if (const JsonNode* meshRef = member(node, "mesh")) {
      Item* mesh = readItemRef(*meshRef, "\"mesh\"");
      if (!mesh) return false;
      scene_.deformGraphs().link(kDeformTargetGraph, *influence, *mesh);
    }
  }
  return true;
}

bool SceneReader::readMeshDeformers(const JsonNode& meshDeformers) {
  if (!expect(meshDeformers, Kind::Array, "\"meshDeformers\"")) return false;
  for (const JsonNode& node : meshDeformers.elements) {
    if (!expect(node, Kind::Object, "a mesh's deformers") || !checkKeys(node, kMeshDeformerKeys, "in a mesh's deformers"))
      return false;
    const JsonNode* meshRef = member(node, "mesh");
    const JsonNode* list = member(node, "deformers");
    if (!meshRef || !list) return fail(node.pos, std::string("mesh's deformers have no ") + (meshRef ? "\"deformers\"" : "\"mesh\""));
    Item* mesh = readItemRef(*meshRef, "\"mesh\"");
    if (!mesh) return false;
    if (!expect(*list, Kind::Array, "\"deformers\"")) return false;
    for (const JsonNode& ref : list->elements) {
      Item* deformer = readItemRef(ref, "a deformer");
      if (!deformer) return false;
      if (!scene_.deformGraphs().link(kDeformersGraph, *mesh, *deformer))
        return fail(ref.pos, inQuotes(ref.text) + " is listed twice for " + inQuotes(meshRef->text));
    }
  }
  return true;
}

}  // namespace vexo
