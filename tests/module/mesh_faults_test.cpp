// What the mesh export does when the host lets it down: each failure is a
// counted error naming the item, and the file stays valid.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/export_context.h"
#include "export/geometry/mesh_export.h"
#include "fake_host.h"
#include "host/vx_host.h"
#include "vexo/vx_mesh.h"

namespace {

// A two-triangle quad whose host can be told to misbehave.
class FaultyMesh : public IVxMesh, public IVxPolygon {
 public:
  unsigned stopAfterPolygons = 99;  // the walk fails once this many were visited
  int failingTriangle = -1;         // this triangle of every polygon fails
  unsigned colourDimension = 4;     // what the "RGBA" map claims to hold

  // IVxMesh
  const char* Ident() const override { return "mesh-1"; }
  unsigned PointCount() override { return 4; }
  unsigned PolygonCount() override { return 2; }
  VxResult PointPosition(unsigned point, double position[3]) override {
    position[0] = point & 1, position[1] = point >> 1, position[2] = 0;
    return VXR_OK;
  }
  VxResult PolygonTriangleCount(unsigned, unsigned* count) override {
    *count = 1;
    return VXR_OK;
  }
  unsigned MapCount(std::uint32_t type) override { return type == VX_VMAP_RGBA ? 1 : 0; }
  VxResult MapByIndex(std::uint32_t, unsigned, const char** name, VxMapID* map) override {
    *name = "Paint";
    *map = 7;
    return VXR_OK;
  }
  VxResult MapLookup(std::uint32_t, const char*, VxMapID*) override { return VXR_NOTFOUND; }
  unsigned MapDimension(VxMapID) override { return colourDimension; }
  unsigned MapValueCount(VxMapID) override { return 4; }
  VxResult MapPointValue(VxMapID, unsigned, float*) override { return VXR_NOTFOUND; }
  VxResult VisitPolygons(IVxPolygonVisitor* visitor) override {
    for (polygon_ = 0; polygon_ < 2; ++polygon_) {
      if (polygon_ == stopAfterPolygons) return VXR_FAILED;
      if (VxFailed(visitor->Polygon(*this))) return VXR_FAILED;
    }
    return VXR_OK;
  }

  // IVxPolygon: polygon 0 is the triangle 0 1 2, polygon 1 the triangle 1 3 2.
  unsigned Index() const override { return polygon_; }
  unsigned VertexCount() const override { return 3; }
  unsigned PointByIndex(unsigned vertex) const override { return kPoints[polygon_][vertex]; }
  const char* Tag(std::uint32_t) const override { return "Default"; }
  unsigned TriangleCount() const override { return 1; }
  VxResult Triangle(unsigned index, unsigned points[3]) const override {
    if (static_cast<int>(index) == failingTriangle) return VXR_FAILED;
    std::copy(kPoints[polygon_], kPoints[polygon_] + 3, points);
    return VXR_OK;
  }
  VxResult Normal(double normal[3]) const override { return CornerNormal(0, normal); }
  VxResult CornerNormal(unsigned, double normal[3]) const override {
    normal[0] = 0, normal[1] = 0, normal[2] = 1;
    return VXR_OK;
  }
  VxResult MapEvaluate(VxMapID, unsigned, float* values) const override {
    // Writes as many values as the map claims, as a host would.
    std::fill(values, values + colourDimension, 0.5f);
    return VXR_OK;
  }

 private:
  static constexpr unsigned kPoints[2][3] = {{0, 1, 2}, {1, 3, 2}};
  unsigned polygon_ = 0;
};

class OneItemScene : public IVxScene, public IVxItem, public IVxMeshService {
 public:
  explicit OneItemScene(FaultyMesh& mesh) : mesh_(mesh) {}
  // IVxScene
  unsigned ItemCount(VxTypeCode) override { return 1; }
  IVxItem* ItemByIndex(VxTypeCode, unsigned) override { return this; }
  IVxItem* ItemByIdent(const char*) override { return this; }
  IVxItem* SceneItem() override { return nullptr; }
  unsigned SelectionCount(const char*) override { return 0; }
  IVxItem* SelectionByIndex(const char*, unsigned) override { return nullptr; }
  VxResult ChannelRead(const char*, double, IVxChannelRead**) override { return VXR_NOTFOUND; }
  double Time() const override { return 0.0; }
  VxResult SetTime(double) override { return VXR_OK; }
  IVxMeshService* MeshService() override { return this; }
  // IVxItem
  VxTypeCode Type() const override { return 1; }
  const char* Name() const override { return "Panel"; }
  const char* Ident() const override { return "item-1"; }
  IVxScene* Scene() override { return this; }
  IVxItem* Parent() override { return nullptr; }
  unsigned ChildCount() override { return 0; }
  IVxItem* ChildByIndex(unsigned) override { return nullptr; }
  unsigned ChannelCount() override { return 0; }
  VxResult ChannelLookup(const char*, unsigned*) override { return VXR_NOTFOUND; }
  VxResult ChannelName(unsigned, const char**) override { return VXR_NOTFOUND; }
  VxResult ChannelType(unsigned, VxChannelType*) override { return VXR_NOTFOUND; }
  // IVxMeshService
  VxResult MeshLookup(IVxItem*, IVxMesh** mesh) override {
    *mesh = &mesh_;
    return VXR_OK;
  }

 private:
  FaultyMesh& mesh_;
};

struct Export {
  FakeHost host;
  FaultyMesh mesh;
  OneItemScene scene{mesh};
  std::string json;
  std::uint32_t errors = 0;

  Export() { CVxHost::set(&host); }
  ~Export() { CVxHost::set(nullptr); }

  void run() {
    ExportContext context;
    context.scene = CVxUser_Scene(&scene);
    context.options.materials = 0;
    context.document = std::make_unique<GltfDocument>(GltfSettings{1, 0, 1, &context.log.reporter()});
    MeshExporter meshes(context);
    const std::uint32_t gltfMesh = meshes.exportMesh(CVxUser_Item(static_cast<IVxItem*>(&scene)));
    const std::uint32_t node = context.document->addNode(context.document->root(), "Panel");
    context.document->setNodeMesh(node, gltfMesh);
    json = context.document->json("out.gltf");
    errors = context.log.errors();
  }
  bool logged(const std::string& line) const {
    return std::find(host.log.begin(), host.log.end(), line) != host.log.end();
  }
  std::size_t count(const std::string& text) const {
    std::size_t n = 0;
    for (std::size_t at = json.find(text); at != std::string::npos; at = json.find(text, at + 1)) ++n;
    return n;
  }
};

TEST(MeshFaults, AWellBehavedHostGivesNoError) {
  Export run;
  run.run();
  EXPECT_EQ(run.errors, 0u);
  EXPECT_EQ(run.count(R"("COLOR_0")"), 1u);
  EXPECT_EQ(run.count(R"("count":6)"), 1u) << run.json;  // six indices
}

TEST(MeshFaults, AWalkThatStopsEarlyIsAnError) {
  Export run;
  run.mesh.stopAfterPolygons = 1;
  run.run();
  EXPECT_TRUE(run.logged("error:    Polygon walk of mesh:Panel stopped early: 1 of 2 polygons read"));
  EXPECT_EQ(run.errors, 1u);
  // What was read: one triangle, three vertices.
  EXPECT_EQ(run.count(R"("count":3)"), 4u) << run.json;
}

TEST(MeshFaults, TrianglesTheHostFailsToGiveAreCounted) {
  Export run;
  run.mesh.failingTriangle = 0;
  run.run();
  EXPECT_TRUE(run.logged("error:    Host failed to give 2 triangles of mesh:Panel"));
  EXPECT_EQ(run.errors, 1u);
  // Nothing to write: the mesh has no primitive and no node points at it.
  EXPECT_EQ(run.count(R"("meshes":[])"), 1u) << run.json;
  EXPECT_EQ(run.count(R"("mesh":)"), 0u);
}

TEST(MeshFaults, AMapOfTheWrongSizeIsLeftOut) {
  Export run;
  run.mesh.colourDimension = 7;  // would overrun a colour's four floats
  run.run();
  EXPECT_TRUE(run.logged("info:    vcolRGBA vmap:Paint"));
  EXPECT_TRUE(run.logged("error:    Vertex map:Paint of mesh:Panel holds 7 values per element instead of 4; left out"));
  EXPECT_EQ(run.errors, 1u);
  EXPECT_EQ(run.count(R"("COLOR_0")"), 0u);
}

}  // namespace
