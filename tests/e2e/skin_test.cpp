// Skins read back by an independent reader and skinned by an independent
// engine (three.js), against the host's own weight maps, deformers and
// joint matrices in the exported pose and in another action.
#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "engine/evaluation.h"
#include "engine/scene.h"
#include "save_and_read.h"
#include "test_matrix.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_deform.h"
#include "vexo/vx_mesh.h"

namespace {

using Point = std::array<double, 3>;

Point transform(const Point& p, const Matrix& m) {
  Point out{};
  for (int c = 0; c < 3; ++c) out[c] = p[0] * m[c] + p[1] * m[4 + c] + p[2] * m[8 + c] + m[12 + c];
  return out;
}

// One point's influences in deformer order: (joint index, weight).
using Influences = std::vector<std::pair<unsigned, double>>;

// What the host holds for one skinned mesh, read through its own SDK and engine.
struct HostSkin {
  std::vector<std::string> joints;  // in deformer order
  std::vector<Point> points;
  std::vector<Influences> influences;  // per point

  // The first four influences with their weights scaled to sum to one.
  Influences written(std::size_t point) const {
    Influences kept(influences[point].begin(), influences[point].begin() + std::min<std::size_t>(4, influences[point].size()));
    double sum = 0.0;
    for (const auto& [joint, weight] : kept) sum += weight;
    for (auto& entry : kept) entry.second /= sum;
    return kept;
  }
};

class Host {
 public:
  explicit Host(const std::string& path) : sdk_(scene_) { EXPECT_TRUE(vexo::readSceneFile(path, scene_, error_)) << error_; }

  // The mesh item's skin from its "deformers" graph.
  HostSkin skin(const std::string& meshName) {
    HostSkin skin;
    IVxItem* meshItem = sdk_.wrap(scene_.findName(meshName));
    IVxMesh* mesh = nullptr;
    EXPECT_EQ(sdk_.MeshService()->MeshLookup(meshItem, &mesh), VXR_OK);
    skin.points.resize(mesh->PointCount());
    skin.influences.resize(mesh->PointCount());
    for (unsigned p = 0; p < mesh->PointCount(); ++p) mesh->PointPosition(p, skin.points[p].data());

    IVxDeformService* deform = sdk_.DeformService();
    IVxItemGraph* graph = nullptr;
    EXPECT_EQ(deform->ItemGraph(meshItem, "deformers", &graph), VXR_OK);
    IVxChannelRead* read = nullptr;
    sdk_.ChannelRead("edit", scene_.time(), &read);
    for (unsigned i = 0; i < graph->LinkCount(); ++i) {
      IVxItem* deformer = nullptr;
      graph->LinkByIndex(i, &deformer);
      IVxItem* joint = nullptr;
      if (deform->TestInfluence(deformer) != VXR_OK || VxFailed(deform->InfluenceJoint(deformer, &joint))) continue;
      const auto index = static_cast<unsigned>(skin.joints.size());
      skin.joints.push_back(joint->Name());
      unsigned channel = 0;
      std::int32_t type = 0;
      const char* mapName = "";
      deformer->ChannelLookup("type", &channel);
      read->Integer(deformer, channel, &type);
      deformer->ChannelLookup("name", &channel);
      read->Text(deformer, channel, &mapName);
      VxMapID map = VX_MAP_NONE;
      if (type != 1 || VxFailed(mesh->MapLookup(VX_VMAP_WEIGHT, mapName, &map))) continue;
      struct Collect : IVxMapPointVisitor {
        HostSkin* skin;
        unsigned joint;
        VxResult Point(unsigned point, const float* values) override {
          skin->influences[point].emplace_back(joint, values[0]);
          return VXR_OK;
        }
      } collect;
      collect.skin = &skin;
      collect.joint = index;
      mesh->MapEnumeratePoints(map, &collect);
    }
    read->Release();
    graph->Release();
    return skin;
  }

  Matrix world(const std::string& name, const char* action) {
    vexo::Evaluation evaluation(scene_, action, scene_.time());
    vexo::Matrix m{};
    EXPECT_TRUE(evaluation.matrix(*scene_.findName(name), vexo::MatrixChannel::World, m)) << name;
    Matrix out;
    std::copy(m.begin(), m.end(), out.begin());
    return out;
  }
  Matrix local(const std::string& name, const char* action) {
    const vexo::Item* parent = scene_.findName(name)->parent();
    const Matrix w = world(name, action);
    return parent ? multiply(w, inverse(world(parent->name(), action))) : w;
  }

 private:
  vexo::Scene scene_;
  vexo::SdkScene sdk_;
  std::string error_;
};

struct EngineMesh {
  std::vector<std::string> joints;
  std::vector<double> stored, skinned;
};

// Runs three.js over a ".glb", with the named nodes' local matrices replaced.
std::vector<EngineMesh> skinWithEngine(const TempDir& dir, const std::string& glb,
                                       const std::vector<std::pair<std::string, Matrix>>& pose) {
  std::string command = "node " GLTFIO_ENGINE_SCRIPT " '" + glb + "'";
  if (!pose.empty()) {
    std::ostringstream json;
    json.precision(17);
    json << "{";
    for (std::size_t i = 0; i < pose.size(); ++i) {
      json << (i ? ", " : "") << "\"" << pose[i].first << "\": [";
      for (int k = 0; k < 16; ++k) json << (k ? ", " : "") << pose[i].second[k];
      json << "]";
    }
    json << "}";
    command += " '" + dir.write("pose.json", json.str()) + "'";
  }
  std::string text;
  if (FILE* pipe = popen((command + " 2>&1").c_str(), "r")) {
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
    pclose(pipe);
  }
  rapidjson::Document json;
  json.Parse(text.c_str());
  std::vector<EngineMesh> meshes;
  EXPECT_TRUE(json.IsObject()) << "the engine failed (run scripts/setup.sh --test): " << text.substr(0, 2000);
  if (!json.IsObject()) return meshes;
  for (const auto& in : json["meshes"].GetArray()) {
    EngineMesh mesh;
    for (const auto& joint : in["joints"].GetArray()) mesh.joints.push_back(joint.GetString());
    for (const auto& v : in["stored"].GetArray()) mesh.stored.push_back(v.GetDouble());
    for (const auto& v : in["skinned"].GetArray()) mesh.skinned.push_back(v.GetDouble());
    meshes.push_back(std::move(mesh));
  }
  return meshes;
}

// The host point at a stored vertex position (the example's points are distinct).
std::size_t pointAt(const HostSkin& skin, const double* position) {
  for (std::size_t p = 0; p < skin.points.size(); ++p)
    if (std::fabs(skin.points[p][0] - position[0]) < 1e-6 && std::fabs(skin.points[p][1] - position[1]) < 1e-6 &&
        std::fabs(skin.points[p][2] - position[2]) < 1e-6)
      return p;
  ADD_FAILURE() << "no host point at " << position[0] << ", " << position[1] << ", " << position[2];
  return 0;
}

const std::string kArm = GLTFIO_EXAMPLES_DIR "/skinned_arm.json";
// The whole scene: joints are exported with their children.
std::vector<std::string> whole(std::vector<std::string> more = {}) {
  more.insert(more.begin(), {"--set", "sceneio.gltf.save.exportType=0"});
  return more;
}
const std::vector<std::string> kArmJoints = {"Shoulder", "Elbow", "Wrist", "Thumb", "Finger"};

TEST(Skin, ArmJointsWeightsAndBindMatricesAreTheHosts) {
  TempDir dir;
  Host host(kArm);
  const HostSkin hostSkin = host.skin("Arm");
  ASSERT_EQ(hostSkin.joints, kArmJoints);
  const SavedScene saved = saveAndRead(dir, readFile(kArm), "arm.glb", whole());

  ASSERT_EQ(saved.gltf.skins.size(), 1u);
  const ReadSkin& skin = saved.gltf.skins[0];
  EXPECT_EQ(skin.name, "Arm_Skin");
  EXPECT_EQ(skin.joints, kArmJoints);
  EXPECT_EQ(skin.skeleton, "");
  EXPECT_EQ(saved.gltf.node("Arm")->skin, 0);
  ASSERT_EQ(skin.inverseBindMatrices.size(), 16 * kArmJoints.size());
  for (std::size_t j = 0; j < kArmJoints.size(); ++j) {
    const Matrix expected = inverse(host.world(kArmJoints[j], "edit"));
    for (int k = 0; k < 16; ++k) EXPECT_NEAR(skin.inverseBindMatrices[16 * j + k], expected[k], 1e-6) << kArmJoints[j] << " " << k;
  }

  const ReadPrimitive& primitive = saved.gltf.meshes.at(0).primitives.at(0);
  const std::vector<double>& positions = primitive.attributes.at("POSITION");
  const std::vector<double>& joints = primitive.attributes.at("JOINTS_0");
  const std::vector<double>& weights = primitive.attributes.at("WEIGHTS_0");
  const std::size_t vertices = positions.size() / 3;
  ASSERT_EQ(joints.size(), 4 * vertices);
  ASSERT_EQ(weights.size(), 4 * vertices);
  bool sawFive = false;
  for (std::size_t v = 0; v < vertices; ++v) {
    const std::size_t point = pointAt(hostSkin, &positions[3 * v]);
    sawFive = sawFive || hostSkin.influences[point].size() == 5;
    const Influences expected = hostSkin.written(point);
    for (std::size_t slot = 0; slot < 4; ++slot) {
      const double joint = slot < expected.size() ? expected[slot].first : 0.0;
      const double weight = slot < expected.size() ? expected[slot].second : 0.0;
      EXPECT_EQ(joints[4 * v + slot], joint) << "vertex " << v << " slot " << slot;
      EXPECT_NEAR(weights[4 * v + slot], weight, 1e-6) << "vertex " << v << " slot " << slot;
    }
  }
  EXPECT_TRUE(sawFive);

  const std::string warning =
      "warning: Warning - Skin: Arm_Skin Node: Arm has more then four joints affecting at least one vertex. This skin "
      "may not properly display animation for some vertices.";
  EXPECT_EQ(std::count(saved.run.errLines.begin(), saved.run.errLines.end(), warning), 1) << saved.run.errText();
  const int created = saved.run.lineIndex("info: Creating deformers for mesh:Arm");
  EXPECT_GE(created, 0);
  EXPECT_EQ(saved.run.lineIndex("info:    deformers:5"), created + 1);
  EXPECT_EQ(saved.run.lineIndex("info:    name:\"ShoulderInfluence\" loc:Shoulder map:\"shoulder\" count:8"), created + 2);
  EXPECT_TRUE(saved.run.printed("info:    name:\"FingerInfluence\" loc:Finger map:\"finger\" count:4"));
}

TEST(Skin, ThreeJsSkinsTheArmWhereTheHostPutsIt) {
  TempDir dir;
  Host host(kArm);
  const HostSkin hostSkin = host.skin("Arm");
  saveAndRead(dir, readFile(kArm), "arm.glb", whole());

  // In the exported pose every vertex stays at its point.
  const std::vector<EngineMesh> still = skinWithEngine(dir, dir.file("arm.glb"), {});
  ASSERT_EQ(still.size(), 1u);
  EXPECT_EQ(still[0].joints, kArmJoints);
  for (std::size_t i = 0; i < still[0].stored.size(); ++i) EXPECT_NEAR(still[0].skinned[i], still[0].stored[i], 1e-5) << i;

  // In the action "wave" every vertex lands where blending the host's joint moves puts it.
  std::vector<std::pair<std::string, Matrix>> pose;
  for (const std::string& joint : kArmJoints) pose.emplace_back(joint, host.local(joint, "wave"));
  const std::vector<EngineMesh> moved = skinWithEngine(dir, dir.file("arm.glb"), pose);
  ASSERT_EQ(moved.size(), 1u);
  std::vector<Matrix> moves;
  for (const std::string& joint : kArmJoints) moves.push_back(multiply(inverse(host.world(joint, "edit")), host.world(joint, "wave")));
  double largestMove = 0.0;
  for (std::size_t v = 0; 3 * v < moved[0].stored.size(); ++v) {
    const std::size_t point = pointAt(hostSkin, &moved[0].stored[3 * v]);
    Point expected{};
    for (const auto& [joint, weight] : hostSkin.written(point)) {
      const Point p = transform(hostSkin.points[point], moves[joint]);
      for (int c = 0; c < 3; ++c) expected[c] += weight * p[c];
    }
    for (int c = 0; c < 3; ++c) {
      EXPECT_NEAR(moved[0].skinned[3 * v + c], expected[c], 1e-4) << "vertex " << v << " axis " << c;
      largestMove = std::max(largestMove, std::fabs(expected[c] - hostSkin.points[point][c]));
    }
  }
  EXPECT_GT(largestMove, 0.5);  // the pose really differs from the exported one
}

// Two meshes: "Left" skinned through its deformers graph with a deformer of
// another "type", "Right" through influences that name it themselves.
std::string twoMeshScene(const std::string& leftJoint = "Bone") {
  return R"({ "items": [
    { "name": "Left", "type": "mesh", "mesh": { "points": [[0,0,0], [1,0,0], [1,1,0], [0,1,0]], "polygons": [[0,1,2,3]],
        "maps": [ { "type": "WGHT", "name": "w", "points": [1, 0.5, 0.5, null] },
                  { "type": "WGHT", "name": "v", "points": [0.5, 0.5, 0.5, 0.5] } ] } },
    { "name": "Right", "type": "mesh", "mesh": { "points": [[2,0,0], [3,0,0], [3,1,0]], "polygons": [[0,1,2]],
        "maps": [ { "type": "WGHT", "name": "r", "points": [1, 1, 0.25] } ] } },
    { "name": "Bone", "type": "locator", "position": [0.5, 0, 0], "children": [
        { "name": "Tip", "type": "locator", "position": [1, 0, 0] } ] },
    { "name": "MorphGroup", "type": "locator" },
    { "name": "Deformers", "type": "deformGroup", "children": [
        { "name": "LeftW", "type": "influence", "channels": { "name": "w" } },
        { "name": "LeftV", "type": "influence", "channels": { "type": 0, "name": "v" } },
        { "name": "RightMissing", "type": "influence", "channels": { "name": "r" } },
        { "name": "RightR", "type": "influence", "channels": { "name": "r" } } ] } ],
  "influences": [ { "item": "LeftW", "joint": ")" + leftJoint + R"(" }, { "item": "LeftV", "joint": "Tip" },
                  { "item": "RightMissing", "joint": "MorphGroup", "mesh": "Right" },
                  { "item": "RightR", "joint": "Tip", "mesh": "Right" } ],
  "meshDeformers": [ { "mesh": "Left", "deformers": ["LeftW", "LeftV"] } ] })";
}

TEST(Skin, TwoMeshesTwoSkinsAndOnlyWeightMapDeformersAddWeights) {
  TempDir dir;
  const SavedScene saved = saveAndRead(dir, twoMeshScene(), "two.gltf", whole());
  ASSERT_EQ(saved.gltf.skins.size(), 2u);
  EXPECT_EQ(saved.gltf.skins[0].name, "Left_Skin");
  EXPECT_EQ(saved.gltf.skins[0].joints, (std::vector<std::string>{"Bone", "Tip"}));
  EXPECT_EQ(saved.gltf.skins[1].name, "Right_Skin");
  EXPECT_EQ(saved.gltf.skins[1].joints, (std::vector<std::string>{"Tip"}));
  EXPECT_EQ(saved.gltf.node("Left")->skin, 0);
  EXPECT_EQ(saved.gltf.node("Right")->skin, 1);

  // "LeftV" has "type" 0: its map "v" adds nothing, so joint 1 carries no weight.
  // Point 3 has no influence at all and rests wholly on joint 0.
  const ReadPrimitive& left = saved.gltf.meshes.at(0).primitives.at(0);
  const std::vector<double>& joints = left.attributes.at("JOINTS_0");
  const std::vector<double>& weights = left.attributes.at("WEIGHTS_0");
  for (std::size_t v = 0; v < weights.size() / 4; ++v) {
    EXPECT_EQ(weights[4 * v], 1.0) << v;
    for (int slot = 0; slot < 4; ++slot) EXPECT_EQ(joints[4 * v + slot], 0.0) << v;
  }
  // Path through influences: the missing joint loses only its own influence.
  EXPECT_TRUE(saved.run.printed("error: Failed to find node:MorphGroup")) << saved.run.errText();
  EXPECT_TRUE(saved.run.printed("info:    deformer:RightR ident:RightR weights:3"));
  const ReadPrimitive& right = saved.gltf.meshes.at(1).primitives.at(0);
  EXPECT_EQ(right.attributes.at("WEIGHTS_0"), (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(Skin, AMissingJointNodeEndsTheGraphSkin) {
  TempDir dir;
  const SavedScene saved = saveAndRead(dir, twoMeshScene("MorphGroup"), "missing.glb", whole());
  EXPECT_TRUE(saved.run.printed("error: Failed to find node:MorphGroup (for skin deformer)")) << saved.run.errText();
  ASSERT_EQ(saved.gltf.skins.size(), 1u);
  EXPECT_EQ(saved.gltf.skins[0].name, "Right_Skin");
  EXPECT_EQ(saved.gltf.node("Left")->skin, -1);
  EXPECT_EQ(saved.gltf.meshes.at(0).primitives.at(0).attributes.count("JOINTS_0"), 0u);
}

TEST(Skin, OnlyMorphMapsOneWritesSkinsAndTheMeshStaysAsWithout) {
  TempDir dir;
  std::string withoutSkin;
  for (const char* value : {"0", "2"}) {
    const SavedScene saved = saveAndRead(dir, readFile(kArm), std::string("arm") + value + ".glb",
                                         whole({"--set", std::string("sceneio.gltf.save.morphMaps=") + value}));
    EXPECT_TRUE(saved.gltf.skins.empty()) << value;
    EXPECT_EQ(saved.gltf.meshes.at(0).primitives.at(0).attributes.count("JOINTS_0"), 0u) << value;
    EXPECT_FALSE(saved.run.printed("info: Creating deformers for mesh:Arm")) << value;
    if (withoutSkin.empty()) withoutSkin = saved.bytes;
    EXPECT_EQ(saved.bytes, withoutSkin);
  }
  // World-space skinned meshes: the skinned node is written in parts, not as a matrix.
  const SavedScene trs = saveAndRead(dir, readFile(kArm), "trs.gltf", whole());
  EXPECT_NE(trs.bytes.find(R"("name":"Arm","rotation")"), std::string::npos) << trs.bytes.substr(0, 600);
  const SavedScene matrix = saveAndRead(dir, readFile(kArm), "matrix.gltf", whole({"--set", "sceneio.gltf.save.skinnedMeshInWS=0"}));
  EXPECT_EQ(matrix.bytes.find(R"("name":"Arm","rotation")"), std::string::npos);
}

}  // namespace
