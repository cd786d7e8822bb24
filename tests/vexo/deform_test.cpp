// Deformers as the host keeps them: influences read from scene files, the
// scene graphs and influence test through the SDK, and weight-map pairs.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "scene_fixture.h"
#include "vexo/vx_deform.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

const char* kRig = R"({ "items": [
  { "name": "Skin", "type": "mesh", "mesh": { "points": [[0,0,0], [1,0,0], [1,1,0]], "polygons": [[0,1,2]],
      "maps": [ { "type": "WGHT", "name": "w", "points": [0.5, null, 2] } ] } },
  { "name": "Bone", "type": "locator" },
  { "name": "Rig", "type": "deformGroup", "children": [
      { "name": "A", "type": "influence", "channels": { "name": "w" } },
      { "name": "Loose", "type": "influence" },
      { "name": "Morph", "type": "morphDeform" } ] } ],
  "influences": [ { "item": "A", "joint": "Bone", "mesh": "Skin" } ],
  "meshDeformers": [ { "mesh": "Skin", "deformers": ["Morph", "A", "Loose"] } ] })";

std::vector<IVxItem*> links(IVxDeformService& deform, IVxItem* item, const char* graph) {
  std::vector<IVxItem*> found;
  IVxItemGraph* list = nullptr;
  if (deform.ItemGraph(item, graph, &list) != VXR_OK) return found;
  for (unsigned i = 0; i < list->LinkCount(); ++i) {
    IVxItem* linked = nullptr;
    EXPECT_EQ(list->LinkByIndex(i, &linked), VXR_OK);
    found.push_back(linked);
  }
  IVxItem* past = nullptr;
  EXPECT_EQ(list->LinkByIndex(list->LinkCount(), &past), VXR_OUTOFBOUNDS);
  list->Release();
  return found;
}

TEST(Deform, GraphsInfluenceTestAndChannelsThroughTheSdk) {
  SceneFixture f(kRig);
  IVxDeformService& deform = *f.sdk.DeformService();
  EXPECT_EQ(links(deform, f.item("Skin"), "deformers"),
            (std::vector<IVxItem*>{f.item("Morph"), f.item("A"), f.item("Loose")}));
  EXPECT_EQ(links(deform, f.item("A"), "deformTarget"), std::vector<IVxItem*>{f.item("Skin")});
  EXPECT_EQ(links(deform, f.item("A"), "deformJoint"), std::vector<IVxItem*>{f.item("Bone")});
  IVxItemGraph* none = nullptr;
  EXPECT_EQ(deform.ItemGraph(f.item("Loose"), "deformTarget", &none), VXR_NOTFOUND);

  // Only an influence that binds a joint passes.
  EXPECT_EQ(deform.TestInfluence(f.item("A")), VXR_OK);
  EXPECT_EQ(deform.TestInfluence(f.item("Loose")), VXR_FALSE);
  EXPECT_EQ(deform.TestInfluence(f.item("Morph")), VXR_FALSE);
  IVxItem* joint = nullptr;
  EXPECT_EQ(deform.InfluenceJoint(f.item("A"), &joint), VXR_OK);
  EXPECT_EQ(joint, f.item("Bone"));
  EXPECT_EQ(deform.InfluenceJoint(f.item("Loose"), &joint), VXR_NOTFOUND);

  // "type" defaults to 1, a weight map; "name" is set per item.
  std::int32_t type = 0;
  const char* name = nullptr;
  EXPECT_EQ(f.reader()->Integer(f.item("Loose"), f.channel("Loose", "type"), &type), VXR_OK);
  EXPECT_EQ(type, 1);
  EXPECT_EQ(f.reader()->Text(f.item("A"), f.channel("A", "name"), &name), VXR_OK);
  EXPECT_STREQ(name, "w");
}

TEST(Deform, WeightMapPairsInPointOrder) {
  SceneFixture f(kRig);
  IVxMesh* mesh = nullptr;
  ASSERT_EQ(f.sdk.MeshService()->MeshLookup(f.item("Skin"), &mesh), VXR_OK);
  VxMapID map = VX_MAP_NONE;
  ASSERT_EQ(mesh->MapLookup(VX_VMAP_WEIGHT, "w", &map), VXR_OK);
  struct Collect : IVxMapPointVisitor {
    std::vector<std::pair<unsigned, float>> pairs;
    VxResult Point(unsigned point, const float* values) override {
      pairs.emplace_back(point, values[0]);
      return pairs.size() < 2 ? VXR_OK : VXR_FAILED;
    }
  } collect;
  EXPECT_EQ(mesh->MapEnumeratePoints(map, &collect), VXR_FAILED);  // the visitor stopped it
  EXPECT_EQ(collect.pairs, (std::vector<std::pair<unsigned, float>>{{0, 0.5f}, {2, 2.0f}}));
  EXPECT_EQ(mesh->MapEnumeratePoints(map + 100, &collect), VXR_BADARG);
}

TEST(Deform, SceneFileErrorsNameTheProblem) {
  const std::string items = R"("items": [ { "name": "M", "type": "mesh" }, { "name": "B", "type": "locator" },
      { "name": "G", "type": "deformGroup" }, { "name": "I", "type": "influence" } ])";
  const auto error = [&](const std::string& rest) { return readError("{ " + items + ", " + rest + " }"); };
  EXPECT_NE(error(R"("influences": [ { "item": "X", "joint": "B" } ])").find("\"item\": no item \"X\""), std::string::npos);
  EXPECT_NE(error(R"("influences": [ { "item": "M", "joint": "B" } ])").find("\"M\" is a \"mesh\", not an \"influence\""),
            std::string::npos);
  EXPECT_NE(error(R"("influences": [ { "item": "I", "joint": "G" } ])").find("joint \"G\" is no locator"),
            std::string::npos);
  EXPECT_NE(error(R"("influences": [ { "item": "I" } ])").find("influence has no \"joint\""), std::string::npos);
  EXPECT_NE(error(R"("influences": [ { "item": "I", "joint": "B" }, { "item": "I", "joint": "B" } ])")
                .find("\"I\" already binds a joint"),
            std::string::npos);
  EXPECT_NE(error(R"("meshDeformers": [ { "mesh": "M", "deformers": ["I", "I"] } ])")
                .find("\"I\" is listed twice for \"M\""),
            std::string::npos);
  EXPECT_NE(error(R"("meshDeformers": [ { "mesh": "M", "deformer": [] } ])").find("unknown key \"deformer\""),
            std::string::npos);
}

}  // namespace
}  // namespace vexo
