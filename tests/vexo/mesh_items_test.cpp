// Mesh items in the host's scene: which items own a mesh, instances, and the
// SDK's mesh service over them.
#include <gtest/gtest.h>

#include <string>

#include "engine/scene.h"
#include "mesh/mesh_data.h"
#include "sdk_impl/sdk_scene.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

class MeshItems : public ::testing::Test {
 protected:
  Item& add(const char* type, const char* name) { return *scene_.addItem(scene_.types().find(type), name); }

  IVxMesh* lookup(Item& item, VxResult expected = VXR_OK) {
    IVxMesh* mesh = nullptr;
    EXPECT_EQ(sdk_.MeshService()->MeshLookup(sdk_.wrap(&item), &mesh), expected) << item.name();
    return mesh;
  }

  Scene scene_;
  SdkScene sdk_{scene_};
};

TEST_F(MeshItems, MeshAndTriSurfItemsOwnAMeshUnderTheirIdent) {
  Item& box = add("mesh", "Box");
  Item& surface = add("triSurf", "Surface");
  MeshData* boxMesh = scene_.meshes().ownMesh(box);
  ASSERT_NE(boxMesh, nullptr);
  EXPECT_EQ(boxMesh->ident(), box.ident());
  EXPECT_EQ(boxMesh->pointCount(), 0u);  // empty until something is built
  EXPECT_EQ(scene_.meshes().ownMesh(box), boxMesh);
  ASSERT_NE(scene_.meshes().ownMesh(surface), nullptr);
  EXPECT_NE(scene_.meshes().ownMesh(surface), boxMesh);

  for (const char* type : {"locator", "camera", "meshInst", "groupLocator"}) {
    Item& other = add(type, type);
    EXPECT_EQ(scene_.meshes().ownMesh(other), nullptr) << type;
    EXPECT_EQ(scene_.meshes().meshOf(other), nullptr) << type;
  }
}

TEST_F(MeshItems, InstancesShowTheirSourcesMesh) {
  Item& box = add("mesh", "Box");
  Item& copy = add("meshInst", "Copy");
  Item& camera = add("camera", "Camera");
  EXPECT_EQ(scene_.meshes().meshOf(copy), nullptr);

  std::string problem;
  EXPECT_FALSE(scene_.meshes().setSource(copy, camera, &problem));
  EXPECT_EQ(problem, "\"Camera\" is a \"camera\"; an instance shows the mesh of a \"mesh\" or \"triSurf\" item");
  EXPECT_FALSE(scene_.meshes().setSource(box, box, &problem));
  EXPECT_EQ(problem, "\"Box\" is a \"mesh\", not a mesh instance");

  ASSERT_TRUE(scene_.meshes().setSource(copy, box, &problem)) << problem;
  EXPECT_EQ(scene_.meshes().source(copy), &box);
  EXPECT_EQ(scene_.meshes().meshOf(copy), scene_.meshes().ownMesh(box));
  EXPECT_EQ(scene_.meshes().ownMesh(copy), nullptr);
}

TEST_F(MeshItems, TheMeshServiceAnswersForTheThreeMeshTypes) {
  Item& box = add("mesh", "Box");
  Item& surface = add("triSurf", "Surface");
  Item& copy = add("meshInst", "Copy");
  Item& lonely = add("meshInst", "Lonely");
  Item& locator = add("locator", "Null");
  ASSERT_TRUE(scene_.meshes().setSource(copy, box, nullptr));
  MeshData& data = *scene_.meshes().ownMesh(box);
  data.appendPoints(std::vector<double>{0, 0, 0, 1, 0, 0, 1, 1, 0}.data(), 3);
  data.addPolygon({0, 1, 2});

  IVxMesh* boxMesh = lookup(box);
  ASSERT_NE(boxMesh, nullptr);
  EXPECT_STREQ(boxMesh->Ident(), "Box");
  EXPECT_EQ(boxMesh->PointCount(), 3u);
  EXPECT_EQ(boxMesh->PolygonCount(), 1u);

  // The instance hands out the very same mesh, so an exporter's cache by ident shares it.
  IVxMesh* copyMesh = lookup(copy);
  EXPECT_EQ(copyMesh, boxMesh);
  EXPECT_STREQ(copyMesh->Ident(), "Box");

  IVxMesh* surfaceMesh = lookup(surface);
  ASSERT_NE(surfaceMesh, nullptr);
  EXPECT_NE(surfaceMesh, boxMesh);
  EXPECT_STREQ(surfaceMesh->Ident(), "Surface");
  EXPECT_EQ(surfaceMesh->PointCount(), 0u);

  lookup(lonely, VXR_NOTFOUND);
  lookup(locator, VXR_NOTFOUND);
  lookup(scene_.sceneItem(), VXR_NOTFOUND);
  EXPECT_EQ(sdk_.MeshService()->MeshLookup(sdk_.wrap(&box), nullptr), VXR_BADARG);
  IVxMesh* mesh = nullptr;
  EXPECT_EQ(sdk_.MeshService()->MeshLookup(nullptr, &mesh), VXR_NOTFOUND);

  // Items of another scene are not this scene's.
  Scene other;
  SdkScene otherSdk(other);
  Item& foreign = *other.addItem(other.types().find("mesh"), "Box");
  EXPECT_EQ(sdk_.MeshService()->MeshLookup(otherSdk.wrap(&foreign), &mesh), VXR_NOTFOUND);
}

TEST_F(MeshItems, AnInstanceGivenASourceLaterFindsItsMesh) {
  Item& copy = add("meshInst", "Copy");
  lookup(copy, VXR_NOTFOUND);
  Item& first = add("mesh", "First");
  Item& second = add("mesh", "Second");
  ASSERT_TRUE(scene_.meshes().setSource(copy, first, nullptr));
  EXPECT_STREQ(lookup(copy)->Ident(), "First");
  ASSERT_TRUE(scene_.meshes().setSource(copy, second, nullptr));
  EXPECT_STREQ(lookup(copy)->Ident(), "Second");
  EXPECT_EQ(lookup(copy), lookup(second));
}

}  // namespace
}  // namespace vexo
