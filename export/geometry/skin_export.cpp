#include "skin_export.h"

#include <cstddef>
#include <string>
#include <vector>

#include "core/matrix4.h"
#include "host/deformer.h"
#include "host/locator.h"
#include "skin_slots.h"

namespace {

// An influence that passed its checks, in deformer order.
struct InfluenceRecord {
  std::string key;        // the deformer's name
  CVxUser_Item joint;
  std::string jointName;  // also the name of the joint's node
  std::uint32_t node;     // the joint's glTF node
  std::string weightMap;  // empty: the deformer brings no weights
};

class SkinBuilder {
 public:
  SkinBuilder(ExportContext& context, const DeformerEntry& entry, unsigned pointCount)
      : context_(context), entry_(entry), slots_(pointCount) {}

  void create(const std::string& name) {
    name_ = name;
    skin_ = context_.document->addSkin(name);
  }

  // The joint with the inverse of its world matrix in the exported pose as
  // its bind matrix; the identity when that matrix cannot be had.
  // A joint bound twice keeps its first index: glTF joints are unique.
  std::uint32_t addJoint(const CVxUser_Item& joint, std::uint32_t node) {
    for (std::size_t j = 0; j < jointNodes_.size(); ++j)
      if (jointNodes_[j] == node) return static_cast<std::uint32_t>(j);
    jointNodes_.push_back(node);
    double world[16], inverse[16];
    const CVxLocator locator(context_.scene, joint);
    const bool known = locator.test() && locator.worldMatrix(context_.edit, world) && matrix4::invert(world, inverse);
    return context_.document->addSkinJoint(skin_, node, known ? inverse : nullptr);
  }

  // The joint's weights into the points' slots; warns once when a point
  // already had four influences.
  void addWeights(std::uint32_t joint, const std::vector<CVxPointWeight>& pairs) {
    bool dropped = false;
    for (const CVxPointWeight& pair : pairs)
      if (slots_.add(pair.point, joint, pair.weight) == SkinSlots::Add::Dropped) dropped = true;
    if (dropped)
      context_.log.warning(
          "Warning - Skin: %s Node: %s has more then four joints affecting at least one vertex. This skin may not "
          "properly display animation for some vertices.",
          name_.c_str(), entry_.item.name().c_str());
  }

  // Attaches the skin to the mesh's node and writes every primitive's slots;
  // a skin without joints stays unwritten and leaves the mesh as it was.
  void finish(const MeshExporter& meshes) {
    if (jointNodes_.empty()) return;
    GltfDocument& document = *context_.document;
    document.setNodeSkin(entry_.node, skin_);
    const std::uint32_t mesh = meshes.meshOf(entry_.item);
    const std::vector<std::vector<std::uint32_t>>& primitives = meshes.vertexPoints(mesh);
    std::vector<std::uint16_t> joints;
    std::vector<float> weights;
    for (std::size_t p = 0; p < primitives.size(); ++p) {
      primitiveSlots(slots_, primitives[p], joints, weights);
      const auto primitive = static_cast<std::uint32_t>(p);
      document.setPrimitiveAttribute(mesh, primitive, "JOINTS_0",
                                     document.addUShortAccessor(GltfAccessorType::Vec4, joints));
      document.setPrimitiveAttribute(mesh, primitive, "WEIGHTS_0",
                                     document.addFloatAccessor(GltfAccessorType::Vec4, weights, false));
    }
  }

 private:
  ExportContext& context_;
  const DeformerEntry& entry_;
  SkinSlots slots_;
  std::string name_;
  std::uint32_t skin_ = GltfDocument::kNone;
  std::vector<std::uint32_t> jointNodes_;  // by joint index
};

// The weight-map name of a deformer: its "name" channel when its "type" is 1.
std::string weightMapName(const ExportContext& context, const CVxUser_Item& deformer) {
  std::int32_t type = 0;
  std::string name;
  if (context.edit.integer(deformer, deformer.channelIndex("type"), type) && type == 1)
    context.edit.text(deformer, deformer.channelIndex("name"), name);
  return name;
}

std::vector<CVxPointWeight> weightsOf(const CVxMesh& mesh, const std::string& mapName) {
  std::vector<CVxPointWeight> pairs;
  if (!mapName.empty()) readWeightMap(mesh, mapName, pairs);
  return pairs;
}

// Influences that name the mesh themselves through the scene graph, in scene order.
std::vector<CVxUser_Item> linkedInfluences(const ExportContext& context, const CVxUser_Item& meshItem) {
  std::vector<CVxUser_Item> found;
  const unsigned count = context.scene.itemCount(VX_TYPE_ANY);
  for (unsigned i = 0; i < count; ++i) {
    const CVxUser_Item item = context.scene.item(VX_TYPE_ANY, i);
    const CVxItemGraph targets(context.scene, item, kVxGraphDeformTarget);
    for (unsigned link = 0; link < targets.count(); ++link) {
      CVxUser_Item target;
      if (targets.link(link, target) && target == meshItem) {
        found.push_back(item);
        break;
      }
    }
  }
  return found;
}

// Influence items found by the scene scan: a joint missing from the export
// only loses that influence.
void skinFromInfluences(ExportContext& context, const MeshExporter& meshes, const DeformerEntry& entry,
                        const CVxMesh& mesh, const std::vector<CVxUser_Item>& influences) {
  const CVxDeformService deform(context.scene);
  const std::string name = entry.item.name();
  SkinBuilder skin(context, entry, mesh.pointCount());
  skin.create(name + "_Skin");
  for (const CVxUser_Item& influence : influences) {
    if (!deform.isInfluence(influence)) continue;
    const std::vector<CVxPointWeight> pairs = weightsOf(mesh, weightMapName(context, influence));
    context.log.info("   deformer:%s ident:%s weights:%ld", influence.name().c_str(), influence.ident().c_str(),
                     static_cast<long>(pairs.size()));
    const CVxUser_Item joint = deform.joint(influence);
    const std::string jointName = joint.name();
    const std::uint32_t node = context.document->findNode(jointName.c_str());
    if (node == GltfDocument::kNone) {
      context.log.error("Failed to find node:%s", jointName.c_str());
      continue;
    }
    skin.addWeights(skin.addJoint(joint, node), pairs);
  }
  skin.finish(meshes);
}

// The mesh item's own "deformers" graph: any failure ends the skin.
void skinFromGraph(ExportContext& context, const MeshExporter& meshes, const DeformerEntry& entry,
                   const CVxMesh& mesh) {
  const CVxItemGraph graph(context.scene, entry.item, kVxGraphDeformers);
  const unsigned count = graph.count();
  if (count == 0) return;

  const CVxDeformService deform(context.scene);
  std::vector<InfluenceRecord> records;
  for (unsigned i = 0; i < count; ++i) {
    CVxUser_Item deformer;
    if (!graph.link(i, deformer)) {
      context.log.error("Failed to obtain deformer:%d for mesh", static_cast<int>(i));
      return;
    }
    if (!deform.isInfluence(deformer)) continue;
    const CVxUser_Item joint = deform.joint(deformer);
    const std::string jointName = joint.name();
    const std::uint32_t node = context.document->findNode(jointName.c_str());
    if (node == GltfDocument::kNone) {
      context.log.error("Failed to find node:%s (for skin deformer)", jointName.c_str());
      return;
    }
    records.push_back({deformer.name(), joint, jointName, node, weightMapName(context, deformer)});
  }

  SkinBuilder skin(context, entry, mesh.pointCount());
  skin.create(entry.item.name() + "_Skin");
  context.log.info("   deformers:%d", static_cast<int>(records.size()));
  for (const InfluenceRecord& record : records) {
    const std::vector<CVxPointWeight> pairs = weightsOf(mesh, record.weightMap);
    context.log.info("   name:\"%s\" loc:%s map:\"%s\" count:%ld", record.key.c_str(),
                     record.jointName.c_str(), record.weightMap.c_str(),
                     static_cast<long>(pairs.size()));
    skin.addWeights(skin.addJoint(record.joint, record.node), pairs);
  }
  skin.finish(meshes);
}

}  // namespace

bool createDeformersForMesh(ExportContext& context, const MeshExporter& meshes, const DeformerEntry& entry) {
  context.log.info("Creating deformers for mesh:%s", entry.item.name().c_str());
  const CVxMesh mesh(context.scene, entry.item);
  const std::vector<CVxUser_Item> influences = linkedInfluences(context, entry.item);
  if (!influences.empty())
    skinFromInfluences(context, meshes, entry, mesh, influences);
  else
    skinFromGraph(context, meshes, entry, mesh);
  return true;
}

void exportSkins(ExportContext& context, const MeshExporter& meshes) {
  for (const DeformerEntry& entry : context.deformers) createDeformersForMesh(context, meshes, entry);
}
