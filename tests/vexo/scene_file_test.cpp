#include <gtest/gtest.h>

#include <string>

#include "scene_fixture.h"

namespace vexo {
namespace {

TEST(SceneFile, ReadsItemsHierarchyChannelsTimeAndSelection) {
  SceneFixture f(R"({
    // Hand-written files may carry comments and trailing commas.
    "scene": { "channels": { "fps": 30 }, "actions": { "edit": { "currentS": 0.5 } } },
    "time": 0.25,
    "items": [
      { "name": "Render", "type": "polyRender" },
      { "name": "Body", "type": "mesh", "id": "body01",
        "children": [ { "name": "Arm", "type": "locator", "channels": { "visible": 1 } },
                      { "name": "Body", "type": "camera" } ] },
      { "name": "Cube", "type": "mesh" },
      { "name": "X", "type": "mesh", "id": "Cube" },
      { "name": "B", "type": "locator", "id": "Cube (2)/Position" },
    ],
    "selection": [ "Arm", "body01", "Cube" ],
  })");
  ASSERT_TRUE(f.ok());
  std::vector<std::string> order;  // transform items aside
  for (std::size_t i = 0; i < f.scene.itemCount(); ++i)
    if (!f.scene.item(i).stackOwner()) order.push_back(f.scene.item(i).ident());
  // Generated idents avoid the ids given later in the file, of items and of transform items alike.
  EXPECT_EQ(order, (std::vector<std::string>{"Scene", "Render", "body01", "Arm", "Body", "Cube (2)", "Cube",
                                             "Cube (2)/Position"}));
  EXPECT_EQ(f.scene.findIdent("Cube (2)/Position (2)")->stackOwner(), f.scene.findIdent("Cube (2)"));
  const Item* body = f.scene.findIdent("body01");
  ASSERT_EQ(body->children().size(), 2u);
  EXPECT_EQ(body->children()[0]->name(), "Arm");
  EXPECT_EQ(body->children()[1]->type().name, "camera");

  EXPECT_EQ(f.number("Arm", "visible"), 1.0);
  EXPECT_EQ(f.number("Scene", "fps"), 30.0);
  EXPECT_EQ(f.number("Scene", "currentS"), 0.5);
  EXPECT_EQ(f.number("Scene", "currentS", "setup"), 0.0);
  EXPECT_EQ(f.scene.time(), 0.25);
  // A reference is an ident first, then a name no other item has.
  EXPECT_EQ(f.scene.selection(), (std::vector<Item*>{f.scene.findIdent("Arm"), f.scene.findIdent("body01"),
                                                     f.scene.findIdent("Cube")}));
}

TEST(SceneFile, EachErrorNamesFileLineAndColumn) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      // JSON syntax
      {"{\n  \"items\": [\n    {\"name\": \"A\" \"type\": \"mesh\"}\n  ]\n}",
       "scene.json:3:18: expected ',' or '}' after an object member"},
      {"", "scene.json:1:1: the file holds no JSON value"},
      {"{} {}", "scene.json:1:4: unexpected text after the end of the JSON value"},
      // columns count characters: the tab and "é" are one each; the reader stops after the "n"
      {"{\"items\": [\n\t{\"name\": \"é\", \"type\": nope}]}", "scene.json:2:25: invalid JSON value"},
      {"/* unclosed {\"items\": []}", "scene.json:1:26: unclosed comment, or a '/' that starts no comment"},
      // format
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\",\n  \"channels\": {\"resZ\": 1}}]}",
       "scene.json:2:16: unknown channel \"resZ\" for item type \"polyRender\""},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"channels\": {\"resX\": 800.5}}]}",
       "scene.json:1:69: channel \"resX\" takes an integer, not 800.5"},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"channels\": {\"resX\": 4294967296}}]}",
       "scene.json:1:69: channel \"resX\" takes a 32-bit integer, not 4294967296"},
      {"{\"scene\": {\"channels\": {\"fps\": true}}}", "scene.json:1:32: channel \"fps\" takes a number, not a boolean"},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\", \"actions\": {\"edit\": {\"effect\": 3}}}]}",
       "scene.json:1:77: channel \"effect\" takes a string, not 3"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"id\": \"x\",\n \"children\": [{\"name\": \"B\", \"type\": \"mesh\", \"id\": \"x\"}]}]}",
       "scene.json:2:51: duplicate id \"x\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"chanels\": {}}]}",
       "scene.json:1:42: unknown key \"chanels\" in an item; expected one of \"name\", \"type\", \"id\", \"channels\", "
       "\"actions\", \"children\", \"mesh\", \"source\", \"position\", \"rotation\", \"rotationOrder\", \"scale\", "
       "\"rotationPivot\", \"scalePivot\", \"rotationOffset\", \"scaleOffset\", \"preRotation\", \"postRotation\", "
       "\"transforms\""},
      {"{\"item\": []}",
       "scene.json:1:2: unknown key \"item\" at the top level; expected one of \"scene\", \"time\", \"items\", "
       "\"selection\", \"links\", \"itemList\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"name\": \"B\"}]}", "scene.json:1:42: duplicate key \"name\""},
      {"{\"items\": [{\"name\": \"F\", \"type\": \"mesh\", \"id\": \"f1\"}, {\"name\": \"F\", \"type\": \"mesh\", \"id\": \"f2\"}],\n"
       " \"selection\": [\"F\"]}",
       "scene.json:2:16: cannot select: 2 items are named \"F\"; name one by its id"},
      {"{\"items\": [{\"type\": \"mesh\"}]}", "scene.json:1:12: item has no \"name\""},
      {"{\"items\": [{\"name\": \"A\"}]}", "scene.json:1:12: item \"A\" has no \"type\""},
      {"{\"items\": {}}", "scene.json:1:11: \"items\" takes an array, not an object"},
      {"[]", "scene.json:1:1: a scene file holds a JSON object, not an array"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"actions\": {\"run\": {}}}]}",
       "scene.json:1:54: unknown action \"run\"; actions are \"edit\" and the names of \"actionclip\" items"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"actions\": {\"setup\": {}}}]}",
       "scene.json:1:54: setup values are written under \"channels\", not as an action"},
      {"{\"time\": \"now\"}", "scene.json:1:10: \"time\" takes a number of seconds, not a string"},
      // locators, links and the item list
      {"{\"items\": [\n  {\"name\": \"R\", \"type\": \"polyRender\", \"position\": [1, 2, 3]}]}",
       "scene.json:2:39: \"position\" is for locators; item type \"polyRender\" is not one"},
      {"{\"items\": [\n  {\"name\": \"L\", \"type\": \"locator\", \"position\": [1, 2]}]}",
       "scene.json:2:48: \"position\" takes an array of 3 numbers, not an array of 2"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\",\n  \"rotation\": [0, \"90\", 0]}]}",
       "scene.json:2:19: \"rotation\" element 1 is a string, not a number"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"rotationOrder\": \"XYW\"}]}",
       "scene.json:1:62: unknown rotation order \"XYW\"; expected one of \"XYZ\", \"XZY\", \"YXZ\", \"YZX\", \"ZXY\", "
       "\"ZYX\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [],\n  \"scalePivot\": [0, 0, 0]}]}",
       "scene.json:2:3: \"scalePivot\" cannot be given beside \"transforms\", which lists the whole stack"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n  {\"type\": \"rotate\", \"name\": \"R\"}]}]}",
       "scene.json:2:12: unknown transform type \"rotate\"; expected one of \"translation\", \"rotation\", \"scale\", "
       "\"transform\", \"shear\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n"
       "  {\"type\": \"transform\", \"name\": \"T\", \"values\": [0, 0, 0]}]}]}",
       "scene.json:2:38: unknown key \"values\" in a \"transform\" transform; expected one of \"type\", \"name\", \"id\", "
       "\"channels\", \"actions\", \"position\", \"rotation\", \"order\", \"scale\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n"
       "  {\"type\": \"rotation\", \"name\": \"A\", \"main\": true},\n  {\"type\": \"rotation\", \"name\": \"B\", \"main\": true}]}]}",
       "scene.json:3:45: the locator has a main \"rotation\" already"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"transforms\": [\n  {\"type\": \"shear\"}]}]}",
       "scene.json:2:3: a \"shear\" transform has no \"name\""},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"channels\": {\"worldMatrix\": 1}}]}",
       "scene.json:1:58: channel \"worldMatrix\" is computed from the transforms and cannot be set"},
      {"{\"items\": [{\"name\": \"L\", \"type\": \"locator\", \"id\": \"x\", \"transforms\": [\n"
       "  {\"type\": \"scale\", \"name\": \"S\", \"id\": \"x\"}]}]}",
       "scene.json:2:40: duplicate id \"x\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"Nobody.pos.X\", \"to\": \"A.visible\"}]}",
       "scene.json:2:21: no item for \"Nobody.pos.X\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A.pos.X\"}]}",
       "scene.json:2:40: item \"A\" has no channel \"pos.X\"; its transform item \"A/Position\" has"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A\"}]}",
       "scene.json:2:40: \"to\" takes \"ITEM.CHANNEL\", not \"A\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\"}]}",
       "scene.json:2:12: link has no \"to\""},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A.visible\"}]}",
       "scene.json:2:12: cannot link \"A.visible\" to \"A.visible\": a channel cannot drive itself"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.worldMatrix\", \"to\": \"A/Position.pos.X\"}]}",
       "scene.json:2:12: cannot link \"A.worldMatrix\" to \"A/Position.pos.X\": a matrix channel cannot drive a float "
       "channel"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A.visible\", \"to\": \"A/Position.pos.X\"},\n"
       "  {\"from\": \"A.visible\", \"to\": \"A/Position.pos.X\"}]}",
       "scene.json:3:3: cannot link \"A.visible\" to \"A/Position.pos.X\": the link exists already"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"links\": [{\"from\": \"A/Position.pos.X\", \"to\": \"A.visible\"},\n"
       "  {\"from\": \"A.visible\", \"to\": \"A/Position.pos.X\"}]}",
       "scene.json:3:3: cannot link \"A.visible\" to \"A/Position.pos.X\": it would close a loop: the source already "
       "takes its value from the target"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}],\n \"itemList\": [\"A\", \"Q\"]}",
       "scene.json:2:20: cannot list: no item \"Q\""},
      // A misspelt type is named as such, not as keys the type would not take.
      {"{\"items\": [{\"name\": \"L\", \"type\": \"lokator\", \"position\": [1, 2, 3]}]}",
       "scene.json:1:34: unknown item type \"lokator\""},
  };
  for (const auto& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
  // The 512th "[" opens the 513th level.
  EXPECT_EQ(readError("{\"items\": " + std::string(600, '[')), "scene.json:1:522: values nested too deeply");
}

TEST(SceneFile, FilesThatCannotBeRead) {
  Scene scene;
  std::string error;
  EXPECT_FALSE(readSceneFile("/nonexistent/scene.json", scene, error));
  EXPECT_EQ(error, "/nonexistent/scene.json: cannot read the scene file: No such file or directory");
  EXPECT_FALSE(readSceneFile("/tmp", scene, error));
  EXPECT_EQ(error, "/tmp: cannot read the scene file: it is a folder");
  EXPECT_FALSE(readSceneText(std::string("{\"items\": [\0]}", 14), "z.json", scene, error));
  EXPECT_EQ(error, "z.json:1:12: zero byte in the text");
}

}  // namespace
}  // namespace vexo
