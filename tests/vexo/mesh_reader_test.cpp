// Meshes in scene files and mesh items: what the reader builds, as the SDK
// shows it, and where it places its messages.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mesh/mesh_data.h"
#include "scene_fixture.h"
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
    { "name": "Surface", "type": "triSurf" }, { "name": "Lonely", "type": "meshInst" }, { "name": "Null", "type": "locator" }
  ]
})";

IVxMesh* meshOf(SceneFixture& f, const char* ref) {
  IVxMesh* mesh = nullptr;
  return f.sdk.MeshService()->MeshLookup(f.item(ref), &mesh) == VXR_OK ? mesh : nullptr;
}

// A stored map value as a list; empty when there is none.
std::vector<float> valueOf(const VertexMap& map, const float* value) {
  return value ? std::vector<float>(value, value + map.dimension()) : std::vector<float>{};
}

TEST(MeshSceneFile, MeshItemsAndInstancesAsTheMeshServiceGivesThem) {
  SceneFixture f(kExample);
  IVxMesh* box = meshOf(f, "box01");
  ASSERT_NE(box, nullptr);
  EXPECT_STREQ(box->Ident(), "box01");
  // Instances share their source's mesh, even through another instance.
  EXPECT_EQ(meshOf(f, "Copy"), box);
  EXPECT_EQ(meshOf(f, "Twice"), box);
  IVxMesh* surface = meshOf(f, "Surface");
  ASSERT_NE(surface, nullptr);
  EXPECT_STREQ(surface->Ident(), "Surface");
  EXPECT_EQ(surface->PointCount(), 0u);  // a mesh item without "mesh" is empty
  for (const char* none : {"Lonely", "Null", "Scene"}) EXPECT_EQ(meshOf(f, none), nullptr) << none;
  EXPECT_EQ(f.sdk.MeshService()->MeshLookup(f.item("Box"), nullptr), VXR_BADARG);

  // An instance given a source later finds its mesh, and a new source takes over.
  Item& lonely = *f.scene.findIdent("Lonely");
  ASSERT_TRUE(f.scene.meshes().setSource(lonely, *f.scene.findIdent("box01"), nullptr));
  EXPECT_EQ(meshOf(f, "Lonely"), box);
  ASSERT_TRUE(f.scene.meshes().setSource(lonely, *f.scene.findIdent("Surface"), nullptr));
  EXPECT_EQ(meshOf(f, "Lonely"), surface);
}

TEST(MeshSceneFile, PointsPolygonsTagsAndMapValues) {
  SceneFixture f(kExample);

  const MeshData& data = *f.scene.meshes().ownMesh(*f.scene.findIdent("box01"));
  ASSERT_EQ(data.pointCount(), 5u);
  EXPECT_EQ(data.point(4).x, 2.0);
  ASSERT_EQ(data.polygonCount(), 2u);
  EXPECT_EQ(std::vector<std::uint32_t>(data.polygonPoints(1), data.polygonPoints(1) + 3),
            (std::vector<std::uint32_t>{1, 4, 2}));
  EXPECT_EQ(data.polygonTag(0, VX_PTAG_MATERIAL), "Red");
  EXPECT_EQ(data.polygonTag(1, VX_PTAG_MATERIAL), "Blue");
  EXPECT_EQ(data.smoothingAngle(), 30.0);

  const VertexMap& uv = data.map(data.findMap(VX_VMAP_TEXTUREUV, "uv0"));
  EXPECT_EQ(valueOf(uv, uv.pointValue(1)), (std::vector<float>{1, 0}));
  EXPECT_EQ(valueOf(uv, uv.pointValue(4)), std::vector<float>{});  // null: no value
  EXPECT_EQ(valueOf(uv, uv.cornerValue(data.corner(0, 2))), (std::vector<float>{0.5f, 0.5f}));
  EXPECT_EQ(uv.cornerValueCount(), 1u);
  // A lone number stands for a one-value weight.
  const VertexMap& weight = data.map(data.findMap(VX_VMAP_WEIGHT, "weight"));
  EXPECT_EQ(valueOf(weight, weight.pointValue(0)), std::vector<float>{0.25f});
  EXPECT_EQ(valueOf(weight, weight.pointValue(1)), std::vector<float>{0.5f});
  EXPECT_EQ(weight.pointValueCount(), 3u);
  const VertexMap& paint = data.map(data.findMap(VX_VMAP_RGBA, "paint"));
  EXPECT_EQ(valueOf(paint, paint.cornerValue(data.corner(1, 4))), (std::vector<float>{1, 0, 0, 1}));
  EXPECT_EQ(paint.pointValueCount() + paint.cornerValueCount(), 1u);
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
      // Meshes nested in children are read too; values after a mesh keep their places.
      {"{\"items\": [{\"name\": \"G\", \"type\": \"groupLocator\", \"children\": [\n  {\"name\": \"M\", \"type\": \"mesh\", "
       "\"mesh\": {\"points\": [[0,0,0]], \"polygons\": [[0,0,9]]}}]}]}",
       "9]", "point 9 does not exist: the mesh has 1 points"},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"mesh\", \"mesh\": {\"points\": [[0,0,0],\n [1,0,0]]}}],\n \"selection\": [\"M\", \"N\"]}",
       "\"N\"", "cannot select: no item \"N\""},
  };
  for (const MeshErrorCase& c : cases) {
    Scene scene;
    std::string error;
    EXPECT_FALSE(readSceneText(c.text, "scene.json", scene, error)) << c.text;
    EXPECT_EQ(error, "scene.json:" + positionOf(c.text, c.needle, c.skip) + ": " + c.message) << c.text;
  }
}

}  // namespace
}  // namespace vexo
