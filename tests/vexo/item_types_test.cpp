#include <gtest/gtest.h>

#include "engine/item_types.h"
#include "sdk_impl/sdk_scene_service.h"

namespace vexo {
namespace {

const TypeRegistry& types() { return TypeRegistry::builtin(); }

bool is(const char* type, const char* base) { return types().derives(types().find(type), types().find(base)); }

TEST(ItemTypes, KnowsEveryTypeTheModuleLooksUp) {
  for (const char* name : {"scene", "locator", "groupLocator", "camera", "light", "sunLight", "pointLight",
                           "spotLight", "areaLight", "lightMaterial", "mesh", "meshInst", "triSurf", "morphDeform",
                           "txtrLocator", "polyRender", "mask", "advancedMaterial", "imageMap", "deformGroup",
                           "scale", "rotation", "translation", "transform", "shear", "ikFullBody", "actionclip",
                           "group", "unityShader", "unrealShader", "replicator", "glTFShader", "actor"}) {
    TypeCode code = types().find(name);
    ASSERT_NE(code, kNoType) << name;
    EXPECT_EQ(types().type(code)->name, name);
  }
  EXPECT_EQ(types().find("lokator"), kNoType);
  EXPECT_EQ(types().type(static_cast<TypeCode>(types().size())), nullptr);
}

TEST(ItemTypes, TypeTestsFollowDerivation) {
  for (const char* locator : {"groupLocator", "camera", "light", "mesh", "meshInst", "triSurf", "txtrLocator",
                              "replicator", "sunLight", "areaLight"})
    EXPECT_TRUE(is(locator, "locator")) << locator;
  for (const char* light : {"sunLight", "pointLight", "spotLight", "areaLight"}) EXPECT_TRUE(is(light, "light"));
  EXPECT_TRUE(is("actor", "group"));
  EXPECT_TRUE(is("mesh", "mesh"));

  EXPECT_FALSE(is("locator", "mesh"));
  EXPECT_FALSE(is("lightMaterial", "light"));
  EXPECT_FALSE(is("mesh", "light"));
  EXPECT_FALSE(is("scene", "locator"));
  EXPECT_FALSE(is("ikFullBody", "locator"));
  EXPECT_FALSE(is("group", "actor"));
  for (const char* xfrm : {"scale", "rotation", "translation", "shear"}) {
    EXPECT_FALSE(is(xfrm, "transform")) << xfrm;
    EXPECT_FALSE(is("transform", xfrm)) << xfrm;
    EXPECT_FALSE(is(xfrm, "locator")) << xfrm;
  }
}

TEST(ItemTypes, DerivedTypesCarryTheirBaseChannelsFirst) {
  TypeCode locator = types().find("locator"), mesh = types().find("mesh");
  int visible = types().findChannel(locator, "visible");
  ASSERT_GE(visible, 0);
  EXPECT_EQ(types().findChannel(mesh, "visible"), visible);
  EXPECT_EQ(types().findChannel(types().find("sunLight"), "visible"), visible);
  EXPECT_EQ(types().findChannel(types().find("scene"), "visible"), -1);

  const ItemType* render = types().type(types().find("polyRender"));
  int resX = types().findChannel(render->code, "resX");
  ASSERT_GE(resX, 0);
  EXPECT_GE(types().findChannel(render->code, "enable"), 0);
  EXPECT_LT(types().findChannel(render->code, "enable"), resX);
  EXPECT_EQ(render->channels[resX].type, ValueType::Integer);
  EXPECT_EQ(std::get<std::int32_t>(render->channels[resX].initial), 1920);
}

TEST(ItemTypes, TableMistakesAreCaughtWhenBuilt) {
  EXPECT_THROW(TypeRegistry({{"child", "parent", {}}, {"parent", nullptr, {}}}), std::logic_error);
  EXPECT_THROW(TypeRegistry({{"a", nullptr, {}}, {"a", nullptr, {}}}), std::logic_error);
  TypeRegistry custom({{"base", nullptr, {{"n", ValueType::Float, 2.5, nullptr}}},
                       {"leaf", "base", {{"t", ValueType::Text, 0.0, "hi"}, {"m", ValueType::Matrix, 0.0, nullptr}}}});
  const ItemType* leaf = custom.type(custom.find("leaf"));
  ASSERT_EQ(leaf->channels.size(), 3u);
  EXPECT_EQ(std::get<double>(leaf->channels[0].initial), 2.5);
  EXPECT_EQ(std::get<std::string>(leaf->channels[1].initial), "hi");
  EXPECT_EQ(std::get<Matrix>(leaf->channels[2].initial), identityMatrix());
}

TEST(SdkSceneService, AnswersByTypeCode) {
  SdkSceneService service(types());
  VxTypeCode mesh = -5, locator = -5, light = -5;
  ASSERT_EQ(service.LookupType("mesh", &mesh), VXR_OK);
  ASSERT_EQ(service.LookupType("locator", &locator), VXR_OK);
  ASSERT_EQ(service.LookupType("light", &light), VXR_OK);
  VxTypeCode untouched = 77;
  EXPECT_EQ(service.LookupType("lokator", &untouched), VXR_NOTFOUND);
  EXPECT_EQ(untouched, 77);

  EXPECT_EQ(service.TestType(mesh, locator), VXR_OK);
  EXPECT_EQ(service.TestType(mesh, light), VXR_FALSE);
  EXPECT_EQ(service.TestType(locator, mesh), VXR_FALSE);
  EXPECT_EQ(service.TestType(mesh, VX_TYPE_ANY), VXR_OK);
  EXPECT_TRUE(VxFailed(service.TestType(9999, locator)));

  const char* name = nullptr;
  ASSERT_EQ(service.TypeName(mesh, &name), VXR_OK);
  EXPECT_STREQ(name, "mesh");
  EXPECT_TRUE(VxFailed(service.TypeName(-3, &name)));
}

}  // namespace
}  // namespace vexo
