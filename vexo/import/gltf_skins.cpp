// glTF skins as the host's deformers: per joint a weight map on the mesh and
// an influence that binds the joint through it, listed in joint order as the
// mesh's deformers.
#include <map>

#include "engine/item.h"
#include "import/gltf_accessors.h"
#include "import/gltf_import.h"
#include "mesh/mesh_data.h"
#include "vexo/vx_mesh.h"

namespace vexo {

bool GltfImport::addSkins() {
  for (const SkinnedMesh& skinned : skinned_) {
    const tinygltf::Skin& skin = model_.skins[static_cast<std::size_t>(skinned.node->skin)];
    const std::string what = "skin " + std::to_string(skinned.node->skin);
    std::vector<Item*> joints;
    for (int joint : skin.joints) {
      if (joint < 0 || static_cast<std::size_t>(joint) >= model_.nodes.size())
        return fail(what + " names joint node " + std::to_string(joint) + ", which does not exist");
      if (!nodeItems_[static_cast<std::size_t>(joint)]) {
        warn(what + " has joint node " + std::to_string(joint) + " outside the loaded scene; mesh " +
             skinned.item->name() + " is loaded without its skin");
        joints.clear();
        break;
      }
      joints.push_back(nodeItems_[static_cast<std::size_t>(joint)]);
    }
    if (joints.empty()) continue;
    MeshData& mesh = *scene_.meshes().ownMesh(*skinned.item);
    // Weights per joint and point; a joint named twice at a point adds up.
    std::vector<std::map<std::uint32_t, float>> weights(joints.size());
    for (std::size_t part = 0; part < skinned.parts.size(); ++part) {
      const tinygltf::Primitive* primitive = skinned.parts[part].first;
      const std::uint32_t base = skinned.parts[part].second;
      const std::size_t end = part + 1 < skinned.parts.size() ? skinned.parts[part + 1].second : mesh.pointCount();
      for (int set = 0;; ++set) {
        auto j = primitive->attributes.find("JOINTS_" + std::to_string(set));
        auto w = primitive->attributes.find("WEIGHTS_" + std::to_string(set));
        if (j == primitive->attributes.end() || w == primitive->attributes.end()) break;
        std::vector<std::uint32_t> jointIndices;
        std::vector<float> jointWeights;
        std::string error;
        if (!readAccessorIndices(model_, j->second, 4, jointIndices, error)) return fail(what + " JOINTS: " + error);
        if (!readAccessorFloats(model_, w->second, 4, jointWeights, error)) return fail(what + " WEIGHTS: " + error);
        if (jointIndices.size() != jointWeights.size())
          return fail(what + ": JOINTS_" + std::to_string(set) + " and WEIGHTS_" + std::to_string(set) +
                      " differ in length");
        if (jointIndices.size() / 4 != end - base)
          return fail(what + ": JOINTS_" + std::to_string(set) + " has not one element per position");
        for (std::size_t k = 0; k < jointIndices.size(); ++k) {
          if (jointWeights[k] == 0.0f) continue;
          if (jointIndices[k] >= joints.size())
            return fail(what + ": joint " + std::to_string(jointIndices[k]) + " is out of range for its " +
                        std::to_string(joints.size()) + " joints");
          weights[jointIndices[k]][base + static_cast<std::uint32_t>(k / 4)] += jointWeights[k];
        }
      }
    }
    const std::string groupName = skinned.item->name() + " Skin";
    Item* group = scene_.addItem(type("deformGroup"), groupName, freeIdent(groupName));
    if (!group) return fail("cannot add the deformers of " + skinned.item->name());
    for (std::size_t k = 0; k < joints.size(); ++k) {
      // Map names are per mesh: a joint listed twice, or two joints of one name, get their own.
      std::string mapName = joints[k]->name();
      for (int n = 2; mesh.findMap(VX_VMAP_WEIGHT, mapName) != kNoMap; ++n)
        mapName = joints[k]->name() + " (" + std::to_string(n) + ")";
      const std::size_t map = mesh.addMap(VX_VMAP_WEIGHT, mapName);
      for (const auto& [point, weight] : weights[k]) mesh.setPointValue(map, point, &weight);
      const std::string influenceName = joints[k]->name() + " Influence";
      Item* influence = scene_.addItem(type("influence"), influenceName, freeIdent(influenceName), group);
      if (!influence) return fail("cannot add an influence for " + skinned.item->name());
      setChannel(*influence, "type", 1);
      setChannel(*influence, "name", mapName);
      scene_.deformGraphs().link(kDeformJointGraph, *influence, *joints[k]);
      scene_.deformGraphs().link(kDeformTargetGraph, *influence, *skinned.item);
      scene_.deformGraphs().link(kDeformersGraph, *skinned.item, *influence);
    }
  }
  return true;
}

}  // namespace vexo
