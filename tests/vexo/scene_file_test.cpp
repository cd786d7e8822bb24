#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <string>

#include "mesh/mesh_data.h"
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
       "\"actions\", \"keys\", \"children\", \"mesh\", \"source\", \"position\", \"rotation\", \"rotationOrder\", \"scale\", "
       "\"rotationPivot\", \"scalePivot\", \"rotationOffset\", \"scaleOffset\", \"preRotation\", \"postRotation\", "
       "\"transforms\""},
      {"{\"item\": []}",
       "scene.json:1:2: unknown key \"item\" at the top level; expected one of \"scene\", \"time\", \"items\", "
       "\"selection\", \"links\", \"itemList\", \"influences\", \"meshDeformers\""},
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
       "\"channels\", \"actions\", \"keys\", \"position\", \"rotation\", \"order\", \"scale\""},
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
  // Endless streams are refused before a byte is read; a FIFO without a writer does not block.
  EXPECT_FALSE(readSceneFile("/dev/zero", scene, error));
  EXPECT_EQ(error, "/dev/zero: cannot read the scene file: it is not a regular file");
  const std::string fifo = ::testing::TempDir() + "scene-fifo.json";
  std::remove(fifo.c_str());
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(readSceneFile(fifo, scene, error));
  EXPECT_EQ(error, fifo + ": cannot read the scene file: it is not a regular file");
  std::remove(fifo.c_str());
  // One byte over the limit (a sparse file, nothing written).
  const std::string big = ::testing::TempDir() + "scene-big.json";
  {
    std::ofstream out(big);
  }
  ASSERT_EQ(::truncate(big.c_str(), static_cast<off_t>(kMaxSceneFileSize + 1)), 0);
  EXPECT_FALSE(readSceneFile(big, scene, error));
  EXPECT_EQ(error, big + ": cannot read the scene file: it is larger than the largest scene file, 2147483648 bytes");
  std::remove(big.c_str());
  EXPECT_FALSE(readSceneText(std::string("{\"items\": [\0]}", 14), "z.json", scene, error));
  EXPECT_EQ(error, "z.json:1:12: zero byte in the text");
}

TEST(SceneFile, TextEncodingAtTheEdges) {
  // A byte-order mark is skipped; columns count from after it.
  SceneFixture bom("\xEF\xBB\xBF{\"items\": [{\"name\": \"A\", \"type\": \"locator\"}]}");
  EXPECT_NE(bom.scene.findIdent("A"), nullptr);
  EXPECT_EQ(readError("\xEF\xBB\xBF{x"), "scene.json:1:2: expected a key in double quotes");
  // A surrogate pair is one character; its halves alone, a zero character or a text cut inside a character are refused.
  SceneFixture pair(R"({"items": [{"name": "\ud83d\ude00", "type": "locator"}]})");
  EXPECT_NE(pair.scene.findIdent("\xF0\x9F\x98\x80"), nullptr);
  const std::string lone = "a string holds a \\u escape of a lone surrogate (\\uD800 to \\uDFFF without its pair)";
  const std::string zero = "a string holds the character U+0000 (\\u0000), which names and texts cannot carry";
  const struct {
    std::string text, message;
  } cases[] = {
      {R"({"items": [{"name": "\udc00", "type": "locator"}]})", "scene.json:1:21: " + lone},
      {R"({"items": [{"name": "\ud800x", "type": "locator"}]})", "scene.json:1:22: invalid surrogate pair in a string"},
      {R"({"items": [{"name": "A\u0000B", "type": "locator"}]})", "scene.json:1:21: " + zero},
      {R"({"items": [{"name\u0000": "A", "type": "locator"}]})", "scene.json:1:13: " + zero},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"mesh\",\n  \"mesh\": {\"materials\": [\"a\", \"\\u0000\"]}}]}",
       "scene.json:2:31: " + zero},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"mesh\",\n  \"mesh\": {\"maps\": [{\"name\": \"\\udfff\"}]}}]}",
       "scene.json:2:30: " + lone},
  };
  for (const auto& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
  // Cut after a lead byte, with or without some of its continuation bytes: never read past the text.
  for (const char* cut : {"\xE2", "\xE2\x82", "\xF0", "\xF0\x9F\x98", "\xF4\x8F", "\xE0"}) {
    const std::string text = std::string("{\"items\": [{\"name\": \"long enough to live on the heap ") + cut;
    const std::string error = readError(text);
    EXPECT_EQ(error.rfind("scene.json:1:", 0), 0u) << error;
  }
}

// The value each number's text writes, correctly rounded, in the tree and in a mesh alike.
TEST(SceneFile, NumbersReadAsTheValueTheyWrite) {
  const struct {
    const char* text;
    double value;
  } cases[] = {
      {"0e38", 0.0},
      {"0.0e-999", 0.0},
      {"-0", -0.0},
      {"-0.0", -0.0},
      {"4.9e-324", std::numeric_limits<double>::denorm_min()},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
      {"1e-400", 0.0},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      // 0.1 written out in full, and the halfway point between 1 and the next double, which rounds to even
      {"0.1000000000000000055511151231257827021181583404541015625", 0.1},
      {"1.00000000000000011102230246251565404236316680908203125", 1.0},
      {"1.00000000000000011102230246251565404236316680908203126", 1.0000000000000002},
      {"9007199254740993", 9007199254740992.0},
      {"123456789012345678901234567890", 1.2345678901234568e29},
      {"0.3", 0.3},
      {"7e22", 7e22},
  };
  for (const auto& c : cases) {
    SceneFixture f(std::string("{\"time\": ") + c.text + ",\n \"items\": [{\"name\": \"M\", \"type\": \"mesh\", \"mesh\": " +
                   "{\"points\": [[" + c.text + ", 0, 0]], \"smoothingAngle\": 0}}]}");
    EXPECT_EQ(f.scene.time(), c.value) << c.text;
    EXPECT_EQ(std::signbit(f.scene.time()), std::signbit(c.value)) << c.text;
    MeshData* mesh = f.scene.meshes().ownMesh(*f.scene.findIdent("M"));
    ASSERT_NE(mesh, nullptr);
    EXPECT_EQ(mesh->point(0).x, c.value) << c.text << " in a mesh";
  }
  const std::string tooBig = "number beyond the largest double (about 1.8e308)";
  EXPECT_EQ(readError("{\"time\": 1e400}"), "scene.json:1:10: " + tooBig);
  EXPECT_EQ(readError("{\"time\": 0e400}"), "scene.json:1:10: " + tooBig);
  EXPECT_EQ(readError("{\"time\": -1000e306}"), "scene.json:1:10: " + tooBig);
  EXPECT_EQ(readError("{\"time\": 1.7976931348623159e308}"), "scene.json:1:10: " + tooBig);
  EXPECT_EQ(readError("{\"items\": [{\"name\": \"M\", \"type\": \"mesh\",\n \"mesh\": {\"points\": [[0, 2e308, 0]]}}]}"),
            "scene.json:2:26: " + tooBig);
  // Integers stay exact up to 64 bits.
  SceneFixture big(R"({"items": [{"name": "R", "type": "polyRender", "channels": {"resX": -2147483648}}]})");
  EXPECT_EQ(big.number("R", "resX"), -2147483648.0);
}

}  // namespace
}  // namespace vexo
