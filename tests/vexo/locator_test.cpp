// Locators as the module sees them: transform stacks, world, local and
// parent matrices, matrix channels, per-action values.
#include <gtest/gtest.h>

#include <cmath>

#include "scene_fixture.h"

namespace vexo {
namespace {

const double kPi = std::acos(-1.0);

std::string locatorScene(const std::string& fields) {
  return R"({"items": [{"name": "L", "type": "locator", )" + fields + "}]}";
}

TEST(Locator, RotationOrdersApplyTheirAxesFirstToLast) {
  // X 90, Y 180, Z -90 degrees moves (1, 2, 3) differently in every order; worked out by hand one axis at a time.
  struct Case {
    const char* order;
    Vec3 expected;
  };
  const Case cases[] = {{"XYZ", {-3, 1, -2}}, {"XZY", {3, -1, -2}}, {"YXZ", {3, 1, 2}},
                        {"YZX", {2, 3, 1}},   {"ZXY", {-2, -3, 1}}, {"ZYX", {-2, 3, -1}}};
  for (const Case& c : cases) {
    SceneFixture f(locatorScene(R"("rotation": [90, 180, -90], "rotationOrder": ")" + std::string(c.order) + "\""));
    expectPointNear(transformPoint(f.world("L"), {1, 2, 3}), c.expected, c.order);
  }
}

TEST(Locator, PositiveAnglesTurnRightHanded) {
  SceneFixture f(locatorScene(R"("rotation": [0, 0, 30])"));
  expectPointNear(transformPoint(f.world("L"), {1, 0, 0}), {std::cos(kPi / 6), 0.5, 0}, "about Z");
  SceneFixture g(locatorScene(R"("rotation": [30, 0, 0])"));
  expectPointNear(transformPoint(g.world("L"), {0, 1, 0}), {0, std::cos(kPi / 6), 0.5}, "about X");
  SceneFixture h(locatorScene(R"("rotation": [0, 30, 0])"));
  expectPointNear(transformPoint(h.world("L"), {0, 0, 1}), {0.5, 0, std::cos(kPi / 6)}, "about Y");
}

TEST(Locator, ScaleThenRotationThenPositionInRowVectorLayout) {
  SceneFixture f(locatorScene(R"("position": [1, 2, 3], "rotation": [0, 0, 90], "scale": [2, 3, 4])"));
  // X scales to 2 and turns onto Y; Y scales to 3 and turns onto -X; the translation is the last row.
  expectMatrixNear(f.world("L"), {0, 2, 0, 0, -3, 0, 0, 0, 0, 0, 4, 0, 1, 2, 3, 1}, "world");
  expectMatrixNear(f.local("L"), f.world("L"), "local of a parentless item");
  expectMatrixNear(f.parentWorld("L"), identityMatrix(), "parent of a parentless item");
}

TEST(Locator, RotationPivotStaysInPlace) {
  SceneFixture f(locatorScene(R"("rotation": [0, 0, 90], "rotationPivot": [1, 0, 0], "position": [0, 0, 5])"));
  const Matrix m = f.world("L");
  expectPointNear(transformPoint(m, {1, 0, 0}), {1, 0, 5}, "the pivot");
  expectPointNear(transformPoint(m, {2, 0, 0}), {1, 1, 5}, "a point beside it");
}

TEST(Locator, ScalePivotStaysInPlace) {
  SceneFixture f(locatorScene(R"("scale": [2, 3, 4], "scalePivot": [0, 1, 1])"));
  const Matrix m = f.world("L");
  expectPointNear(transformPoint(m, {0, 1, 1}), {0, 1, 1}, "the pivot");
  expectPointNear(transformPoint(m, {1, 2, 2}), {2, 4, 5}, "a point beside it");
}

TEST(Locator, SharedPivotStaysInPlaceUnderRotationAndScale) {
  SceneFixture f(locatorScene(R"("rotation": [20, -35, 70], "rotationOrder": "YZX", "scale": [2, 0.5, 3],
                                  "rotationPivot": [1, 2, 3], "scalePivot": [1, 2, 3],
                                  "preRotation": [10, 0, 0], "postRotation": [0, 0, 15])"));
  expectPointNear(transformPoint(f.world("L"), {1, 2, 3}), {1, 2, 3}, "the pivot");
}

TEST(Locator, OffsetsAndPreAndPostRotationsTakeTheirPlaceInTheStack) {
  // Post rotation applies before the main rotation and pre rotation after it; both offsets move the result.
  SceneFixture f(locatorScene(R"("rotation": [0, 0, 90], "postRotation": [90, 0, 0], "preRotation": [0, 90, 0],
                                  "rotationOffset": [10, 0, 0], "scaleOffset": [0, 20, 0])"));
  // (1, 2, 3) -> scale offset (1, 22, 3) -> X 90 (1, -3, 22) -> Z 90 (3, 1, 22) -> Y 90 (22, 1, -3) -> offset.
  expectPointNear(transformPoint(f.world("L"), {1, 2, 3}), {32, 1, -3}, "");
}

TEST(Locator, ThreeLevelsCombineLocalWithParentWorld) {
  SceneFixture f(R"({"items": [
    {"name": "Root", "type": "locator", "position": [10, 0, 0], "rotation": [0, 0, 90],
     "children": [{"name": "Mid", "type": "groupLocator", "position": [1, 0, 0], "scale": [2, 1, 1],
                   "children": [{"name": "Leaf", "type": "camera", "position": [0, 1, 0]}]}]}]})");
  const Matrix midWorld = {0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 1, 0, 1};
  expectMatrixNear(f.world("Mid"), midWorld, "Mid world");
  expectMatrixNear(f.parentWorld("Leaf"), midWorld, "Leaf parent");
  expectMatrixNear(f.local("Leaf"), translationMatrix({0, 1, 0}), "Leaf local");
  expectMatrixNear(f.world("Leaf"), {0, 2, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 9, 1, 0, 1}, "Leaf world");
}

TEST(Locator, MatrixChannelsReadWhatTheLocatorComputes) {
  SceneFixture f(R"({"items": [
    {"name": "Root", "type": "locator", "position": [10, 0, 0], "rotation": [0, 0, 90],
     "children": [{"name": "Leaf", "type": "locator", "position": [0, 1, 0], "scale": [2, 3, 4]}]}]})");
  IVxItem* leaf = f.item("Leaf");
  ReadPtr read = f.reader();
  auto channel = [&](const char* name) {
    Matrix m{};
    unsigned index = 0;
    VxChannelType type{};
    EXPECT_EQ(leaf->ChannelLookup(name, &index), VXR_OK) << name;
    EXPECT_EQ(leaf->ChannelType(index, &type), VXR_OK);
    EXPECT_EQ(type, VX_CHAN_MATRIX) << name;
    EXPECT_EQ(read->Matrix(leaf, index, m.data()), VXR_OK) << name;
    return m;
  };
  const Matrix world = f.world("Leaf");
  expectMatrixNear(channel("worldMatrix"), world, "worldMatrix");
  expectMatrixNear(channel("localMatrix"), f.local("Leaf"), "localMatrix");
  expectMatrixNear(channel("parentMatrix"), f.world("Root"), "parentMatrix");
  expectMatrixNear(channel("wposMatrix"), translationMatrix({9, 0, 0}), "wposMatrix");
  expectMatrixNear(channel("wsclMatrix"), scaleMatrix({2, 3, 4}), "wsclMatrix");
  expectMatrixNear(channel("wrotMatrix"), {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}, "wrotMatrix");
}

TEST(Locator, MirroredWorldKeepsAProperRotation) {
  SceneFixture f(locatorScene(R"("scale": [1, -2, 1], "rotation": [0, 0, 90])"));
  const Matrix world = f.world("L");
  const Matrix rebuilt = multiply(multiply(scalePart(world), rotationPart(world)), translationPart(world));
  expectMatrixNear(rebuilt, world, "scale * rotation * translation");
  const Matrix r = rotationPart(world);
  const double det = r[0] * (r[5] * r[10] - r[6] * r[9]) - r[1] * (r[4] * r[10] - r[6] * r[8]) +
                     r[2] * (r[4] * r[9] - r[5] * r[8]);
  EXPECT_NEAR(det, 1.0, 1e-12);
}

TEST(Locator, MatricesFollowTheReadersAction) {
  SceneFixture g(R"({"items": [{"name": "L", "type": "locator",
                     "transforms": [{"type": "translation", "name": "Position", "main": true, "values": [1, 0, 0],
                                     "actions": {"edit": {"pos.X": 2}, "walk": {"pos.X": 3}}}]},
                    {"name": "walk", "type": "actionclip"}]})");
  IVxLocator* view = g.locator("L");
  ASSERT_NE(view, nullptr);
  for (const auto& [action, x] : {std::pair<const char*, double>{"setup", 1}, {"edit", 2}, {"walk", 3}}) {
    Matrix m{};
    ASSERT_EQ(view->WorldMatrix(g.reader(action).get(), m.data()), VXR_OK);
    EXPECT_EQ(m[12], x) << action;
  }
}

TEST(Locator, TransformItemsAreItemsOfTheirOwn) {
  SceneFixture f(R"({"items": [{"name": "A", "type": "locator", "children": [{"name": "B", "type": "locator"}]},
                               {"name": "Render", "type": "polyRender"}]})");
  IVxLocator* a = f.locator("A");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->Item(), f.item("A"));
  ASSERT_EQ(a->TransformCount(), 3u);
  const char* names[] = {"Scale", "Rotation", "Position"};
  const char* types[] = {"scale", "rotation", "translation"};
  for (unsigned i = 0; i < 3; ++i) {
    IVxItem* t = a->TransformByIndex(i);
    ASSERT_NE(t, nullptr);
    EXPECT_STREQ(t->Name(), names[i]);
    EXPECT_EQ(t->Type(), f.scene.types().find(types[i]));
    EXPECT_EQ(t->Parent(), nullptr);
    // In scene order right after the locator, before its child.
    EXPECT_EQ(f.sdk.ItemByIndex(VX_TYPE_ANY, 2 + i), t);
  }
  EXPECT_EQ(a->TransformByIndex(3), nullptr);
  EXPECT_EQ(a->MainTransform(VX_XFRM_SCALE), a->TransformByIndex(0));
  EXPECT_EQ(a->MainTransform(VX_XFRM_ROTATION), a->TransformByIndex(1));
  EXPECT_EQ(a->MainTransform(VX_XFRM_POSITION), a->TransformByIndex(2));
  EXPECT_EQ(a->MainTransform(static_cast<VxMainTransform>(3)), nullptr);
  EXPECT_STREQ(f.sdk.ItemByIndex(VX_TYPE_ANY, 5)->Name(), "B");
  EXPECT_EQ(f.item("A")->ChildCount(), 1u);

  // The view is the same each time; items that are no locators have none.
  IVxLocator* again = nullptr;
  IVxLocatorService* service = f.sdk.LocatorService();
  ASSERT_EQ(service->LocatorLookup(f.item("A"), &again), VXR_OK);
  EXPECT_EQ(again, a);
  IVxLocator* none = nullptr;
  EXPECT_EQ(service->LocatorLookup(f.item("Render"), &none), VXR_NOTFOUND);
  EXPECT_EQ(service->LocatorLookup(a->TransformByIndex(0), &none), VXR_NOTFOUND);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(service->LocatorLookup(nullptr, &none), VXR_BADARG);
}

TEST(Locator, StacksTakeOnlyTransformItemsInTheirPlace) {
  Scene scene;
  const TypeRegistry& types = scene.types();
  Item* a = scene.addItem(types.find("locator"), "A", "", nullptr, StackStart::Empty);
  Item* child = scene.addItem(types.find("locator"), "Child", "", a);
  Item* render = scene.addItem(types.find("polyRender"), "Render");
  const TypeCode rotation = types.find("rotation");
  const std::size_t count = scene.itemCount();
  EXPECT_EQ(scene.addTransform(*render, rotation, "R"), nullptr);
  EXPECT_EQ(scene.addTransform(*a, types.find("mesh"), "M"), nullptr);
  EXPECT_EQ(scene.addTransform(*a, rotation, "R", "", MainTransform::Scale), nullptr);
  EXPECT_EQ(scene.addTransform(*a, rotation, "R", "Child"), nullptr);  // the id is taken
  EXPECT_EQ(scene.itemCount(), count);

  Item* spin = scene.addTransform(*a, rotation, "Spin", "", MainTransform::Rotation);
  ASSERT_NE(spin, nullptr);
  EXPECT_EQ(scene.addTransform(*a, rotation, "Again", "", MainTransform::Rotation), nullptr);
  Item* lean = scene.addTransform(*a, types.find("shear"), "Lean");
  ASSERT_NE(lean, nullptr);
  EXPECT_EQ(spin->ident(), "A/Spin");
  EXPECT_EQ(a->transforms(), (std::vector<Item*>{spin, lean}));
  EXPECT_EQ(a->mainTransform(MainTransform::Rotation), spin);
  EXPECT_EQ(lean->stackOwner(), a);
  // Added after the child, they still come right after their locator in scene order.
  EXPECT_EQ(&scene.item(2), spin);
  EXPECT_EQ(&scene.item(3), lean);
  EXPECT_EQ(&scene.item(4), child);
  EXPECT_EQ(child->transforms().size(), 3u);
}

TEST(Locator, ShearAndTransformItemsInAnExplicitStack) {
  SceneFixture f(locatorScene(R"("transforms": [
      {"type": "shear", "name": "Lean", "values": [0.5, 0, 0.25]},
      {"type": "transform", "name": "Stage", "position": [0, 0, 10], "rotation": [0, 0, 90], "scale": [2, 2, 2],
       "order": "ZYX"}])"));
  // (1, 2, 4): shear x += 0.5 * 2, y += 0.25 * 4 -> (2, 3, 4); scale (4, 6, 8); Z 90 (-6, 4, 8); move (-6, 4, 18).
  expectPointNear(transformPoint(f.world("L"), {1, 2, 4}), {-6, 4, 18}, "");
  IVxLocator* view = f.locator("L");
  EXPECT_EQ(view->MainTransform(VX_XFRM_POSITION), nullptr);
  EXPECT_EQ(f.number("L/Stage", "order"), 5.0);
}

TEST(Locator, TypeChannelsHaveTheirDefaults) {
  SceneFixture f(R"({"items": [{"name": "Cam", "type": "camera"}, {"name": "Spot", "type": "spotLight"},
                               {"name": "Panel", "type": "areaLight", "channels": {"width": 2.5}}]})");
  EXPECT_EQ(f.number("Cam", "focalLen"), 0.05);
  EXPECT_EQ(f.number("Cam", "apertureX"), 0.036);
  EXPECT_EQ(f.number("Cam", "apertureY"), 0.024);
  EXPECT_EQ(f.number("Cam", "clipNear"), 0.01);
  EXPECT_EQ(f.number("Cam", "clipFar"), 1000.0);
  EXPECT_EQ(f.number("Spot", "radiance"), 3.0);
  EXPECT_EQ(f.number("Spot", "color.G"), 1.0);
  EXPECT_NEAR(f.number("Spot", "cone"), kPi / 6, 1e-15);
  EXPECT_EQ(f.number("Panel", "width"), 2.5);
  EXPECT_EQ(f.number("Panel", "height"), 1.0);
  EXPECT_EQ(f.number("Cam", "visible"), 0.0);
}

}  // namespace
}  // namespace vexo
