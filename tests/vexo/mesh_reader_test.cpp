// Meshes in scene files: what the reader builds, as the SDK shows it, and
// where it places its messages.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "mesh/mesh_data.h"
#include "scenefile/json_tree.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

// "LINE:COLUMN" of the first `needle` in `text` (after `skip` earlier ones);
// columns count characters, as the reader's do.
std::string positionOf(const std::string& text, const std::string& needle, int skip = 0) {
  std::size_t offset = text.find(needle);
  while (skip-- > 0 && offset != std::string::npos) offset = text.find(needle, offset + 1);
  EXPECT_NE(offset, std::string::npos) << needle;
  unsigned line = 1, column = 1;
  for (std::size_t i = 0; i < offset; ++i) {
    if (text[i] == '\n') {
      ++line;
      column = 1;
    } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      ++column;
    }
  }
  return std::to_string(line) + ":" + std::to_string(column);
}

const char* const kExample = R"({
  "items": [
    { "name": "Copy", "type": "meshInst", "source": "Box" },  // named before its source
    { "name": "Box", "type": "mesh", "id": "box01",
      "mesh": {
        "points": [[0,0,0], [1,0,0], [1,1,0], [0,1,0], [2,0,0]],
        "polygons": [[0,1,2,3], [1,4,2]],
        "materials": ["Red", "Blue"],
        "smoothingAngle": 30,
        "maps": [
          { "type": "TXUV", "name": "uv0",
            "points": [[0,0], [1,0], [1,1], [0,1], null],
            "corners": [ { "polygon": 0, "point": 2, "value": [0.5, 0.5] } ] },
          { "type": "WGHT", "name": "weight", "points": [0.25, [0.5], null, null, 1] },
          { "type": "RGBA", "name": "paint",
            "corners": [ { "value": [1, 0, 0, 1], "point": 4, "polygon": 1 } ] },
        ] } },
    { "name": "Twice", "type": "meshInst", "source": "Copy" },
    { "name": "Plane", "type": "triSurf", "mesh": { "points": [[0,0,0], [1,0,0], [0,1,0]], "polygons": [[0,1,2]] } }
  ]
})";

// What the walk reports at one corner of one polygon.
struct CornerSeen {
  unsigned polygon, point;
  std::string tag;
  VxResult uvFound, paintFound;
  std::array<float, 2> uv{};
  std::array<float, 4> paint{};
};

class CornerRecorder final : public IVxPolygonVisitor {
 public:
  CornerRecorder(VxMapID uv, VxMapID paint) : uv_(uv), paint_(paint) {}
  VxResult Polygon(const IVxPolygon& polygon) override {
    for (unsigned v = 0; v < polygon.VertexCount(); ++v) {
      CornerSeen corner{polygon.Index(), polygon.PointByIndex(v), polygon.Tag(VX_PTAG_MATERIAL), 0, 0};
      corner.uvFound = polygon.MapEvaluate(uv_, corner.point, corner.uv.data());
      corner.paintFound = polygon.MapEvaluate(paint_, corner.point, corner.paint.data());
      corners.push_back(corner);
    }
    return VXR_OK;
  }
  std::vector<CornerSeen> corners;

 private:
  VxMapID uv_, paint_;
};

class MeshSceneFile : public ::testing::Test {
 protected:
  void read(const std::string& text) {
    std::string error;
    ASSERT_TRUE(readSceneText(text, "scene.json", scene_, error)) << error;
  }
  IVxMesh* meshOf(const char* ref) {
    IVxMesh* mesh = nullptr;
    Item* item = findItemByRef(scene_, ref, nullptr);
    EXPECT_NE(item, nullptr) << ref;
    EXPECT_EQ(sdk_.MeshService()->MeshLookup(sdk_.wrap(item), &mesh), VXR_OK) << ref;
    return mesh;
  }

  Scene scene_;
  SdkScene sdk_{scene_};
};

TEST_F(MeshSceneFile, PointsPolygonsTagsAndMapValuesReachTheSdk) {
  read(kExample);
  IVxMesh* box = meshOf("box01");
  ASSERT_NE(box, nullptr);
  EXPECT_STREQ(box->Ident(), "box01");
  EXPECT_EQ(box->PointCount(), 5u);
  EXPECT_EQ(box->PolygonCount(), 2u);
  double position[3];
  ASSERT_EQ(box->PointPosition(4, position), VXR_OK);
  EXPECT_EQ(position[0], 2.0);
  unsigned triangles = 0;
  ASSERT_EQ(box->PolygonTriangleCount(0, &triangles), VXR_OK);
  EXPECT_EQ(triangles, 2u);
  EXPECT_EQ(scene_.meshes().ownMesh(*scene_.findIdent("box01"))->smoothingAngle(), 30.0);

  VxMapID uv = VX_MAP_NONE, paint = VX_MAP_NONE, weight = VX_MAP_NONE;
  ASSERT_EQ(box->MapLookup(VX_VMAP_TEXTUREUV, "uv0", &uv), VXR_OK);
  ASSERT_EQ(box->MapLookup(VX_VMAP_RGBA, "paint", &paint), VXR_OK);
  ASSERT_EQ(box->MapLookup(VX_VMAP_WEIGHT, "weight", &weight), VXR_OK);
  EXPECT_EQ(box->MapValueCount(uv), 5u);  // four points and one corner
  EXPECT_EQ(box->MapDimension(paint), 4u);

  // A lone number stands for a one-value weight; null leaves the point without one.
  float w = 0;
  ASSERT_EQ(box->MapPointValue(weight, 0, &w), VXR_OK);
  EXPECT_EQ(w, 0.25f);
  ASSERT_EQ(box->MapPointValue(weight, 1, &w), VXR_OK);
  EXPECT_EQ(w, 0.5f);
  EXPECT_EQ(box->MapPointValue(weight, 2, &w), VXR_NOTFOUND);

  CornerRecorder recorder(uv, paint);
  ASSERT_EQ(box->VisitPolygons(&recorder), VXR_OK);
  const std::vector<CornerSeen>& seen = recorder.corners;
  ASSERT_EQ(seen.size(), 7u);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(seen[i].tag, "Red");
  for (std::size_t i = 4; i < 7; ++i) EXPECT_EQ(seen[i].tag, "Blue");
  // Polygon 0 is (0 1 2 3): its own value at point 2 wins over the point's.
  EXPECT_EQ(seen[1].uv, (std::array<float, 2>{1, 0}));
  EXPECT_EQ(seen[2].point, 2u);
  EXPECT_EQ(seen[2].uv, (std::array<float, 2>{0.5f, 0.5f}));
  EXPECT_EQ(seen[2].paintFound, VXR_NOTFOUND);
  // Polygon 1 is (1 4 2): point 2 has the point's value there, point 4 no uv but its own paint.
  EXPECT_EQ(seen[6].point, 2u);
  EXPECT_EQ(seen[6].uv, (std::array<float, 2>{1, 1}));
  EXPECT_EQ(seen[5].point, 4u);
  EXPECT_EQ(seen[5].uvFound, VXR_NOTFOUND);
  ASSERT_EQ(seen[5].paintFound, VXR_OK);
  EXPECT_EQ(seen[5].paint, (std::array<float, 4>{1, 0, 0, 1}));
  EXPECT_EQ(seen[4].paintFound, VXR_NOTFOUND);

  IVxMesh* plane = meshOf("Plane");
  ASSERT_NE(plane, nullptr);
  EXPECT_STREQ(plane->Ident(), "Plane");
  EXPECT_EQ(plane->PolygonCount(), 1u);
  EXPECT_EQ(scene_.meshes().ownMesh(*scene_.findIdent("Plane"))->polygonTag(0, VX_PTAG_MATERIAL), "Default");
}

TEST_F(MeshSceneFile, InstancesShareTheirSourcesMeshEvenThroughAnotherInstance) {
  read(kExample);
  IVxMesh* box = meshOf("Box");
  EXPECT_EQ(meshOf("Copy"), box);
  EXPECT_EQ(meshOf("Twice"), box);
  EXPECT_STREQ(meshOf("Twice")->Ident(), "box01");
  EXPECT_EQ(scene_.meshes().source(*scene_.findIdent("Twice")), scene_.findIdent("box01"));
}

TEST_F(MeshSceneFile, AMeshItemWithoutMeshIsEmptyAndAnInstanceWithoutSourceHasNone) {
  read(R"({"items": [{"name": "A", "type": "mesh"}, {"name": "B", "type": "meshInst"}]})");
  EXPECT_EQ(meshOf("A")->PointCount(), 0u);
  IVxMesh* mesh = nullptr;
  EXPECT_EQ(sdk_.MeshService()->MeshLookup(sdk_.wrap(scene_.findIdent("B")), &mesh), VXR_NOTFOUND);
}

TEST_F(MeshSceneFile, TheShippedMeshExampleReads) {
  std::string error;
  ASSERT_TRUE(readSceneFile(EXAMPLES_DIR "/meshes.json", scene_, error)) << error;
  IVxMesh* box = meshOf("Box");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->PolygonCount(), 6u);
  VxMapID uv = VX_MAP_NONE;
  ASSERT_EQ(box->MapLookup(VX_VMAP_TEXTUREUV, "uv0", &uv), VXR_OK);
  EXPECT_EQ(box->MapValueCount(uv), 24u);  // a value at every corner of every face
  EXPECT_EQ(meshOf("Copy"), box);
  EXPECT_EQ(meshOf("Ground")->PolygonCount(), 4u);
}

struct MeshErrorCase {
  std::string text;
  std::string needle;  // where the message points: the first occurrence
  std::string message;
  int skip = 0;        // occurrences of the needle to pass over first
};

std::string meshItem(const std::string& mesh) {
  return "{\"items\": [\n  {\"name\": \"M\", \"type\": \"mesh\",\n   \"mesh\": " + mesh + "}\n]}";
}

TEST(MeshSceneFileErrors, NameTheLineAndColumnOfTheOffendingValue) {
  const std::string tri = R"("points": [[0,0,0], [1,0,0], [0,1,0]], "polygons": [[0,1,2]])";
  const MeshErrorCase cases[] = {
      {meshItem("{\"points\": [[0,0,0], [1,0,0], [0,1,0]],\n    \"polygons\": [[0,1,2], [0,1,7]]}"), "7]",
       "point 7 does not exist: the mesh has 3 points"},
      {meshItem("{\"points\": [[0,0,0], [1,0,0], [0,1,0]], \"polygons\": [[0,1]]}"), "[0,1]]",
       "a polygon needs at least 3 points, this one has 2"},
      {meshItem("{\"points\": [[0,0,0]], \"polygons\": [[0,-1,0]]}"), "-1",
       "a point index takes a whole number from 0, not -1"},
      {meshItem("{\"points\": [[0,0,0], [1,\"1\",0]]}"), "\"1\"", "a point takes numbers, not a string"},
      {meshItem("{\"points\": [[0,0]]}"), "[0,0]]", "a point takes 3 numbers, not an array of 2"},
      {meshItem("{" + tri + ",\n  \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\",\n    \"points\": [[0,0], [1,0,0], [0,1]]}]}"),
       "[1,0,0], [0,1]]", "a \"TXUV\" value takes 2 numbers, not an array of 3"},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"UVXY\", \"name\": \"uv\"}]}"), "\"UVXY\"",
       "unknown vertex map type \"UVXY\"; expected one of \"NORM\", \"RGB \", \"RGBA\", \"TXUV\", \"TBAS\", \"WGHT\""},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\"}, {\"type\": \"TXUV\", \"name\": \"uv\"}]}"),
       "\"uv\"", "the mesh already has a \"TXUV\" map named \"uv\"", 1},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\", \"points\": [[0,0]]}]}"), "[[0,0]]",
       "vertex map \"uv\" has 1 point values for 3 points; give one per point, null for a point without one"},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\",\n   \"corners\": [{\"polygon\": 0, \"point\": 5, \"value\": [0,0]}]}]}"),
       "5,", "vertex map \"uv\": point 5 is not a corner of polygon 0"},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\",\n   \"corners\": [{\"polygon\": 3, \"point\": 0, \"value\": [0,0]}]}]}"),
       "3,", "vertex map \"uv\": polygon 3 does not exist: the mesh has 1 polygons"},
      {meshItem("{" + tri + ", \"maps\": [{\"type\": \"RGBA\", \"name\": \"c\",\n   \"corners\": [{\"polygon\": 0, \"value\": [0,0,0,1]}]}]}"),
       "{\"polygon\"", "corner value has no \"point\""},
      {meshItem("{" + tri + ", \"maps\": [{\"name\": \"uv\"}]}"), "{\"name\"", "vertex map has no \"type\"", 1},
      {meshItem("{" + tri + ",\n  \"materials\": [\"A\", \"B\"]}"), "[\"A\"",
       "\"materials\" has 2 tags for 1 polygons; give one per polygon"},
      // Columns count characters: "é" is one.
      {meshItem("{\"points\": [[0,0,0], [1,0,0], [0,1,0]], \"polygons\": [[0,1,2], [0,2,1]], \"materials\": [\"é\", 5]}"),
       "5]", "a material tag takes a string, not 5"},
      {meshItem("{" + tri + ", \"smoothingAngle\": 200}"), "200",
       "the smoothing angle must be between 0 and 180 degrees, not 200.000000"},
      {meshItem("{\"pionts\": []}"), "\"pionts\"",
       "unknown key \"pionts\" in a mesh; expected one of \"points\", \"polygons\", \"materials\", \"smoothingAngle\", "
       "\"maps\""},
      {meshItem("{\"points\": [], /* twice */ \"points\": []}"), "\"points\"", "duplicate key \"points\"", 1},
      {meshItem("5"), "5}", "\"mesh\" takes an object, not 5"},
      // Syntax inside a mesh is found by the first pass over the file.
      {meshItem("{\"points\": [[0,0,0] [1,0,0]]}"), "[1,0,0]", "expected ',' or ']' after an array element"},
      {"{\"items\": [{\"name\": \"C\", \"type\": \"camera\", \"mesh\": {}}]}", "\"mesh\"",
       "\"mesh\" is for items of type \"mesh\" or \"triSurf\", not \"camera\""},
      {"{\"items\": [{\"name\": \"C\", \"type\": \"mesh\", \"source\": \"C\"}]}", "\"source\"",
       "\"source\" is for items of type \"meshInst\", not \"mesh\""},
      {"{\"items\": [{\"name\": \"Box\", \"type\": \"mesh\"},\n  {\"name\": \"I\", \"type\": \"meshInst\", \"source\": \"Boxx\"}]}",
       "\"Boxx\"", "cannot find the source: no item \"Boxx\""},
      {"{\"items\": [{\"name\": \"Cam\", \"type\": \"camera\"}, {\"name\": \"I\", \"type\": \"meshInst\", \"source\": \"Cam\"}]}",
       "\"Cam\"", "the source \"Cam\" is a \"camera\"; an instance shows the mesh of a \"mesh\" or \"triSurf\" item", 1},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"meshInst\", \"source\": \"B\"},\n"
       "             {\"name\": \"B\", \"type\": \"meshInst\", \"source\": \"A\"}]}",
       "\"B\"", "the sources of \"A\" go round in a loop"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"meshInst\"}, {\"name\": \"B\", \"type\": \"meshInst\", \"source\": \"A\"}]}",
       "\"A\"", "the source \"A\" is an instance without a \"source\"", 1},
  };
  for (const MeshErrorCase& c : cases) {
    Scene scene;
    std::string error;
    EXPECT_FALSE(readSceneText(c.text, "scene.json", scene, error)) << c.text;
    EXPECT_EQ(error, "scene.json:" + positionOf(c.text, c.needle, c.skip) + ": " + c.message) << c.text;
  }
}

TEST(MeshSceneFileErrors, MeshesNestedInChildrenAreReadToo) {
  const std::string text = "{\"items\": [{\"name\": \"G\", \"type\": \"groupLocator\", \"children\": [\n"
                           "  {\"name\": \"M\", \"type\": \"mesh\", \"mesh\": {\"points\": [[0,0,0]], \"polygons\": [[0,0,9]]}}]}]}";
  Scene scene;
  std::string error;
  EXPECT_FALSE(readSceneText(text, "scene.json", scene, error));
  EXPECT_EQ(error, "scene.json:" + positionOf(text, "9]") + ": point 9 does not exist: the mesh has 1 points");
}

TEST(JsonTree, RawValuesStayTextAndValuesAreFoundByPath) {
  const std::string text = "{\"a\": 1,\n \"big\": [1, [2, 3], {\"k\": 4}],\n \"b\": \"x\", \"c\": {\"big\": 5}}";
  JsonNode root;
  JsonError error;
  auto rawAtTop = [](const std::vector<JsonNode>& open, std::string_view key) { return open.size() == 1 && key == "big"; };
  ASSERT_TRUE(parseJson(text, root, error, rawAtTop)) << error.message;
  ASSERT_EQ(root.members.size(), 4u);
  const JsonNode& big = root.members[1].value;
  EXPECT_EQ(big.kind, JsonNode::Kind::Raw);
  EXPECT_EQ(text.substr(big.rawBegin, big.rawEnd - big.rawBegin), "[1, [2, 3], {\"k\": 4}]");
  EXPECT_EQ(big.pos.line, 2u);
  EXPECT_EQ(big.pos.column, 9u);
  // Values after a raw one keep their places; the rule is asked per key.
  EXPECT_EQ(root.members[2].value.text, "x");
  EXPECT_EQ(root.members[2].keyPos.line, 3u);
  EXPECT_EQ(root.members[2].keyPos.column, 2u);
  EXPECT_EQ(root.members[3].value.members[0].value.kind, JsonNode::Kind::Integer);

  const std::string raw = text.substr(big.rawBegin, big.rawEnd - big.rawBegin);
  EXPECT_EQ(findJsonValue(raw, {1, 1}), raw.find('3'));
  EXPECT_EQ(findJsonValue(raw, {2, 0}), raw.find('4'));
  EXPECT_EQ(findJsonValue(raw, {2, 0}, true), raw.find("\"k\""));
  EXPECT_EQ(findJsonValue(raw, {}), 0u);
  EXPECT_EQ(findJsonValue(raw, {3}), std::string::npos);
  const std::string commented = "/* c */ [0, // x\n 7]";
  EXPECT_EQ(findJsonValue(commented, {1}), commented.find('7'));

  const TextPos pos = textPosition("ab\ncé d", 7);  // "é" takes two bytes
  EXPECT_EQ(pos.line, 2u);
  EXPECT_EQ(pos.column, 4u);
}

}  // namespace
}  // namespace vexo
