// Mesh export read back by an independent reader: every host triangle
// corner against the vertex its index points at, index widths, instances,
// hidden meshes and the map choices.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "gltf_reader.h"
#include "host_scene.h"
#include "save_and_read.h"
#include "validator.h"
#include "vexo_runner.h"

namespace {

struct Point {
  double x, y, z;
};

std::string list(const std::vector<double>& values) {
  std::ostringstream out;
  out.precision(17);
  out << "[";
  for (std::size_t i = 0; i < values.size(); ++i) out << (i ? ", " : "") << values[i];
  out << "]";
  return out.str();
}

// A cube with two materials, a concave L-shaped polygon and a pentagon;
// two UV maps named out of order, RGB and RGBA colours, a tangent basis;
// point values with polygon-specific values over some corners.
std::string shapeScene() {
  const std::vector<Point> points = {{0, 0, 0},   {1, 0, 0}, {1, 1, 0},   {0, 1, 0},     {0, 0, 1},
                                     {1, 0, 1},   {1, 1, 1}, {0, 1, 1},   {0, 0, 3},     {2, 0, 3},
                                     {2, 1, 3},   {1, 1, 3}, {1, 2, 3},   {0, 2, 3},     {0, 0, -2},
                                     {1, 0, -2},  {1.5, 0.8, -2}, {0.5, 1.5, -2}, {-0.5, 0.8, -2}};
  std::ostringstream s;
  s << R"({ "items": [ { "name": "Shape", "type": "mesh", "mesh": { "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i) s << (i ? ", " : "") << list({points[i].x, points[i].y, points[i].z});
  s << R"(],
    "polygons": [[0,3,2,1], [4,5,6,7], [0,1,5,4], [2,3,7,6], [0,4,7,3], [1,2,6,5],
                 [8,9,10,11,12,13], [14,15,16,17,18]],
    "materials": ["Red", "Blue", "Red", "Red", "Blue", "Red", "Green", "Red"],
    "maps": [)";
  // "b" has a value everywhere and a seam on the top face; "a" covers the cube only.
  s << R"({ "type": "TXUV", "name": "b", "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i)
    s << (i ? ", " : "") << list({points[i].x / 2, points[i].y / 2 + points[i].z / 10});
  s << R"(], "corners": [ { "polygon": 1, "point": 6, "value": [0.9, 0.875] } ] },)";
  s << R"({ "type": "TXUV", "name": "a", "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i)
    s << (i ? ", " : "") << (i < 8 ? list({points[i].x, points[i].y}) : "null");
  s << R"(] },)";
  s << R"({ "type": "RGBA", "name": "paint", "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i) s << (i ? ", " : "") << "[0.1, 0.2, 0.3, 0.4]";
  s << R"(], "corners": [ { "polygon": 0, "point": 0, "value": [1, 0, 0, 0.5] } ] },)";
  s << R"({ "type": "RGB ", "name": "tint", "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i)
    s << (i ? ", " : "") << list({points[i].x / 2, points[i].y / 2, 0.25});
  s << R"(] },)";
  s << R"({ "type": "TBAS", "name": "basis", "points": [)";
  for (std::size_t i = 0; i < points.size(); ++i) s << (i ? ", " : "") << "[1, 0, 0, 0, 1, 0]";
  s << R"(], "corners": [ { "polygon": 2, "point": 1, "value": [0, 0, 1, -1, 0, 0] } ] }
    ] } },
    { "name": "Stored", "type": "mesh", "mesh": {
      "points": [[0,0,0], [1,0,0], [1,1,0], [0,1,0]], "polygons": [[0,1,2,3]],
      "maps": [ { "type": "NORM", "name": "n1", "points": [[0,0,2], [0,0,2], [0.6,0,0.8], [0,0,2]] },
                { "type": "NORM", "name": "n2", "points": [[0,0,-1], [0,0,-1], [0,0,-1], [0,0,-1]] } ] } }
  ] })";
  return s.str();
}

double dot(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

std::array<double, 3> cross(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

std::array<double, 3> unit(const std::array<double, 3>& v) {
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  return {v[0] / length, v[1] / length, v[2] / length};
}

// Saves the whole scene as .glb with the given settings and reads it back.
SavedScene save(const TempDir& dir, const std::string& scene, const std::vector<std::string>& settings) {
  std::vector<std::string> args = {"--set", "sceneio.gltf.save.exportType=0"};
  for (const std::string& setting : settings) args.insert(args.end(), {"--set", setting});
  return saveAndRead(dir, scene, "out.glb", args);
}

// Checks every host corner of `item` against the exported mesh `mesh`.
void expectCornersRoundTrip(const SavedScene& saved, const std::string& scenePath, const std::string& item, int mesh,
                            bool tangents) {
  const HostScene host(scenePath);
  ASSERT_TRUE(host.ok()) << host.error();
  std::vector<HostCorner> corners;
  ASSERT_TRUE(host.meshCorners(item, corners));
  ASSERT_LT(mesh, static_cast<int>(saved.gltf.meshes.size()));
  const std::vector<ReadPrimitive>& primitives = saved.gltf.meshes[mesh].primitives;

  // Primitives follow the tags in order of first use; triangles keep the host's order in each.
  std::vector<std::string> tags;
  for (const HostCorner& corner : corners)
    if (std::find(tags.begin(), tags.end(), corner.tag) == tags.end()) tags.push_back(corner.tag);
  ASSERT_EQ(primitives.size(), tags.size());
  for (std::size_t p = 0; p < tags.size(); ++p) {
    const ReadPrimitive& primitive = primitives[p];
    std::size_t k = 0;
    for (const HostCorner& corner : corners) {
      if (corner.tag != tags[p]) continue;
      ASSERT_LT(k, primitive.indices.size()) << tags[p];
      const std::size_t v = static_cast<std::size_t>(primitive.indices[k++]);
      const std::string where = item + " " + tags[p] + " corner " + std::to_string(k - 1);
      for (int axis = 0; axis < 3; ++axis) {
        EXPECT_FLOAT_EQ(primitive.attributes.at("POSITION")[3 * v + axis], corner.position[axis]) << where;
        EXPECT_NEAR(primitive.attributes.at("NORMAL")[3 * v + axis], unit(corner.normal)[axis], 1e-6) << where;
      }
      for (std::size_t set = 0; set < corner.uvs.size(); ++set) {
        const std::vector<double>& uv = primitive.attributes.at("TEXCOORD_" + std::to_string(set));
        EXPECT_FLOAT_EQ(uv[2 * v], corner.uvs[set][0]) << where << " set " << set;
        EXPECT_FLOAT_EQ(uv[2 * v + 1], corner.uvs[set][1]) << where << " set " << set;
      }
      for (std::size_t set = 0; set < corner.colours.size(); ++set) {
        const std::vector<double>& colour = primitive.attributes.at("COLOR_" + std::to_string(set));
        // glTF colours lie in 0..1: the host's are clamped.
        for (int c = 0; c < 4; ++c)
          EXPECT_FLOAT_EQ(colour[4 * v + c], std::clamp(corner.colours[set][c], 0.0f, 1.0f)) << where;
      }
      if (!tangents) continue;
      // A unit tangent square to the normal: the map's tangent with its part
      // along the normal taken out, when anything is left of it; w tells on
      // which side of normal x tangent the map's bitangent lies.
      const std::array<double, 3> n = unit(corner.normal);
      const std::array<double, 3> written = {primitive.attributes.at("TANGENT")[4 * v],
                                             primitive.attributes.at("TANGENT")[4 * v + 1],
                                             primitive.attributes.at("TANGENT")[4 * v + 2]};
      EXPECT_NEAR(dot(written, written), 1.0, 1e-6) << where;
      EXPECT_NEAR(dot(written, n), 0.0, 1e-6) << where;
      const std::array<double, 3> mapT = {corner.tangentBasis[0], corner.tangentBasis[1], corner.tangentBasis[2]};
      const double along = dot(n, mapT);
      const std::array<double, 3> rest = {mapT[0] - along * n[0], mapT[1] - along * n[1], mapT[2] - along * n[2]};
      if (dot(rest, rest) > 1e-12) {
        for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(written[axis], unit(rest)[axis], 1e-6) << where;
      }
      const std::array<double, 3> mapB = {corner.tangentBasis[3], corner.tangentBasis[4], corner.tangentBasis[5]};
      const double side = dot(cross(n, written), mapB);
      EXPECT_EQ(primitive.attributes.at("TANGENT")[4 * v + 3], side < 0 ? -1.0 : 1.0) << where;
    }
    EXPECT_EQ(k, primitive.indices.size()) << tags[p];
  }
}

TEST(MeshExport, EveryCornerRoundTripsWithAllItsValues) {
  TempDir dir;
  const SavedScene saved = save(dir, shapeScene(), {"sceneio.gltf.save.tangentsBitangents=1"});
  expectCornersRoundTrip(saved, dir.file("scene.json"), "Shape", 0, true);
  expectCornersRoundTrip(saved, dir.file("scene.json"), "Stored", 1, false);

  const ReadPrimitive& first = saved.gltf.meshes[0].primitives[0];
  std::vector<std::string> semantics;
  for (const auto& attribute : first.attributes) semantics.push_back(attribute.first);
  EXPECT_EQ(semantics, (std::vector<std::string>{"COLOR_0", "COLOR_1", "NORMAL", "POSITION", "TANGENT", "TEXCOORD_0",
                                                 "TEXCOORD_1"}));
  EXPECT_EQ(first.indexComponentType, 5123);
  // The cube's 12 triangles need one vertex per face corner, and no more.
  EXPECT_EQ(saved.gltf.meshes[0].primitives[0].attributes.at("POSITION").size() / 3,
            4u * 4u + 5u);  // four red faces, the pentagon's five points

  const VexoRun& run = saved.run;
  EXPECT_TRUE(run.printed("info:    Creating mesh:Shape type:mesh nPoints:19")) << run.errText();
  EXPECT_TRUE(run.printed("info:    adding calculated normals (normals mesh map not found)"));
  EXPECT_TRUE(run.printed("info:    normal vmap:n1"));
  EXPECT_LT(run.lineIndex("info:    vcolRGB vmap:tint"), run.lineIndex("info:    vcolRGBA vmap:paint"));
  EXPECT_LT(run.lineIndex("info:    uv vmap:a count:8"), run.lineIndex("info:    uv vmap:b count:20"));
  EXPECT_TRUE(run.printed("info:    vTbasis vmap:basis"));
  EXPECT_TRUE(run.printed("info:    material:Red polyInds:33"));
  EXPECT_TRUE(run.printed("info:    material:Blue polyInds:12"));
  EXPECT_TRUE(run.printed("info:    material:Green polyInds:12"));
  EXPECT_TRUE(run.printed("info:    polyInds:57"));
}

TEST(MeshExport, TangentsAndMaterialsFollowTheirOptions) {
  TempDir dir;
  const SavedScene saved = save(dir, shapeScene(), {"sceneio.gltf.save.materials=0"});
  ASSERT_EQ(saved.gltf.meshes[0].primitives.size(), 1u);
  const ReadPrimitive& all = saved.gltf.meshes[0].primitives[0];
  EXPECT_EQ(all.material, -1);
  EXPECT_EQ(all.indices.size(), 57u);
  EXPECT_EQ(all.attributes.count("TANGENT"), 0u);
  EXPECT_FALSE(saved.run.printed("info:    vTbasis vmap:basis"));
  for (const std::string& line : saved.run.errLines) EXPECT_EQ(line.find("material:"), std::string::npos) << line;
}

// A strip of `triangles` triangles over two rows of points.
std::string stripMesh(const std::string& name, int triangles) {
  std::ostringstream s;
  s << "{ \"name\": \"" << name << "\", \"type\": \"mesh\", \"mesh\": { \"points\": [";
  for (int i = 0; i < triangles + 2; ++i) s << (i ? "," : "") << "[" << i / 2 << "," << i % 2 << ",0]";
  s << "], \"polygons\": [";
  for (int i = 0; i < triangles; ++i) {
    if (i % 2 == 0)
      s << (i ? "," : "") << "[" << i << "," << i + 1 << "," << i + 2 << "]";
    else
      s << ",[" << i + 1 << "," << i << "," << i + 2 << "]";
  }
  s << "] } }";
  return s.str();
}

TEST(MeshExport, SixteenBitIndicesStopAt65535) {
  const std::string scene =
      "{ \"items\": [" + stripMesh("Fits", 21845) + ", " + stripMesh("TooBig", 21846) + "] }";
  TempDir dir;
  const SavedScene saved = save(dir, scene, {});
  ASSERT_EQ(saved.gltf.meshes.size(), 1u);
  EXPECT_EQ(saved.gltf.node("Fits")->mesh, 0);
  EXPECT_EQ(saved.gltf.node("TooBig")->mesh, -1);
  EXPECT_EQ(saved.gltf.meshes[0].primitives[0].indexComponentType, 5123);
  EXPECT_EQ(saved.gltf.meshes[0].primitives[0].indices.size(), 65535u);
  EXPECT_TRUE(saved.run.printed(
      "error:    Creating mesh:TooBig type:mesh nPoints:21848 polyInds:65538 failed! Number of vertices goes over "
      "the maximum of unsigned short data type!"))
      << saved.run.errText();
  EXPECT_TRUE(saved.run.printed("warning: There are 0 warnings and 1 errors reported to event log"));

  TempDir wide;
  const SavedScene all = save(wide, scene, {"sceneio.gltf.save.indicesExport=1"});
  ASSERT_EQ(all.gltf.meshes.size(), 2u);
  for (const ReadMesh& mesh : all.gltf.meshes)
    for (const ReadPrimitive& primitive : mesh.primitives) EXPECT_EQ(primitive.indexComponentType, 5125);
  EXPECT_EQ(all.gltf.node("TooBig")->mesh, 1);
}

TEST(MeshExport, InstancesShareOneMeshAndHiddenMeshesAreLeftOut) {
  const std::string scene = R"({ "items": [
    { "name": "Box", "type": "mesh", "mesh": { "points": [[0,0,0],[1,0,0],[1,1,0],[0,1,0]], "polygons": [[0,1,2,3]] } },
    { "name": "Copy", "type": "meshInst", "source": "Box", "position": [2, 0, 0] },
    { "name": "Copy2", "type": "meshInst", "source": "Box", "position": [4, 0, 0] },
    { "name": "Hidden", "type": "mesh", "channels": { "visible": 1 },
      "mesh": { "points": [[0,0,0],[1,0,0],[0,1,0]], "polygons": [[0,1,2]] } }
  ] })";
  TempDir dir;
  const SavedScene saved = save(dir, scene, {});
  ASSERT_EQ(saved.gltf.meshes.size(), 1u);
  for (const char* name : {"Box", "Copy", "Copy2"}) EXPECT_EQ(saved.gltf.node(name)->mesh, 0) << name;
  ASSERT_NE(saved.gltf.node("Hidden"), nullptr);
  EXPECT_EQ(saved.gltf.node("Hidden")->mesh, -1);
  EXPECT_TRUE(saved.run.printed("info:    Using mesh:Copy type:meshInst which is already created"))
      << saved.run.errText();
  for (const std::string& line : saved.run.errLines) EXPECT_EQ(line.find("mesh:Hidden"), std::string::npos) << line;
}

}  // namespace
