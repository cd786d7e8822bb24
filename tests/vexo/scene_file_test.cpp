#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "engine/scene.h"
#include "scenefile/scene_file.h"

namespace vexo {
namespace {

std::string readError(const std::string& text) {
  Scene scene;
  std::string error;
  EXPECT_FALSE(readSceneText(text, "scene.json", scene, error)) << text;
  return error;
}

std::int32_t intValue(const Item& item, const char* channel, std::string_view action) {
  int index = TypeRegistry::builtin().findChannel(item.typeCode(), channel);
  return std::get<std::int32_t>(item.value(static_cast<std::size_t>(index), action));
}

TEST(SceneFile, ReadsItemsHierarchyChannelsActionsAndSelection) {
  const std::string text = R"({
    // Hand-written files may carry comments and trailing commas.
    "scene": { "channels": { "fps": 30, "currentE": 2.5 }, "actions": { "edit": { "currentS": 0.5 } } },
    "time": 0.25,
    "items": [
      { "name": "Render", "type": "polyRender", "channels": { "resX": 800, "resY": 600 },
        "actions": { "edit": { "resX": 640 }, "walk": { "resY": 300 } } },
      { "name": "Body", "type": "mesh", "id": "body01",
        "children": [ { "name": "Arm", "type": "locator", "channels": { "visible": 1 } },
                      { "name": "Body", "type": "camera" } ] },
      { "name": "walk", "type": "actionclip" },
    ],
    "selection": [ "Arm", "body01" ],
  })";
  Scene scene;
  std::string error;
  ASSERT_TRUE(readSceneText(text, "scene.json", scene, error)) << error;

  std::vector<std::string> order;  // transform items aside
  for (std::size_t i = 0; i < scene.itemCount(); ++i)
    if (!scene.item(i).stackOwner()) order.push_back(scene.item(i).name());
  EXPECT_EQ(order, (std::vector<std::string>{"Scene", "Render", "Body", "Arm", "Body", "walk"}));
  Item* body = scene.findIdent("body01");
  ASSERT_NE(body, nullptr);
  ASSERT_EQ(body->children().size(), 2u);
  EXPECT_EQ(body->children()[0]->name(), "Arm");
  EXPECT_EQ(body->children()[1]->ident(), "Body");  // the name was free: the other Body has an id
  EXPECT_EQ(body->children()[1]->type().name, "camera");

  Item* render = scene.findIdent("Render");
  EXPECT_EQ(intValue(*render, "resX", "setup"), 800);
  EXPECT_EQ(intValue(*render, "resX", "edit"), 640);
  EXPECT_EQ(intValue(*render, "resY", "edit"), 600);
  EXPECT_EQ(intValue(*render, "resY", "walk"), 300);
  EXPECT_EQ(intValue(*scene.findIdent("Arm"), "visible", "edit"), 1);

  const Item& sceneItem = scene.sceneItem();
  const TypeRegistry& types = scene.types();
  auto floatValue = [&](const char* channel, std::string_view action) {
    return std::get<double>(sceneItem.value(types.findChannel(sceneItem.typeCode(), channel), action));
  };
  EXPECT_EQ(floatValue("fps", "edit"), 30.0);  // an integer in the file fills a float channel
  EXPECT_EQ(floatValue("currentE", "setup"), 2.5);
  EXPECT_EQ(floatValue("currentS", "edit"), 0.5);
  EXPECT_EQ(floatValue("currentS", "setup"), 0.0);
  EXPECT_EQ(scene.time(), 0.25);

  EXPECT_EQ(scene.selection(), (std::vector<Item*>{scene.findIdent("Arm"), body}));
}

TEST(SceneFile, GeneratedIdentsAvoidIdsGivenLaterInTheFile) {
  Scene scene;
  std::string error;
  ASSERT_TRUE(readSceneText(R"({"items": [{"name": "Cube", "type": "mesh"}, {"name": "X", "type": "mesh", "id": "Cube"}]})",
                            "scene.json", scene, error))
      << error;
  const std::vector<Item*> meshes = scene.itemsOfType(scene.types().find("mesh"));
  ASSERT_EQ(meshes.size(), 2u);
  EXPECT_EQ(meshes[0]->ident(), "Cube (2)");
  EXPECT_EQ(meshes[1]->ident(), "Cube");
}

struct ErrorCase {
  const char* text;
  const char* message;
};

TEST(SceneFile, EachErrorNamesFileLineAndColumn) {
  const ErrorCase cases[] = {
      // JSON syntax
      {"{\n  \"items\": [\n    {\"name\": \"A\" \"type\": \"mesh\"}\n  ]\n}",
       "scene.json:3:18: expected ',' or '}' after an object member"},
      {"", "scene.json:1:1: the file holds no JSON value"},
      {"{} {}", "scene.json:1:4: unexpected text after the end of the JSON value"},
      // columns count characters: the tab and "é" are one each; the reader stops after the "n"
      {"{\"items\": [\n\t{\"name\": \"é\", \"type\": nope}]}", "scene.json:2:25: invalid JSON value"},
      // format
      {"{\n  \"items\": [\n    { \"name\": \"Body\", \"type\": \"lokator\" }\n  ]\n}",
       "scene.json:3:31: unknown item type \"lokator\""},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\",\n  \"channels\": {\"resZ\": 1}}]}",
       "scene.json:2:16: unknown channel \"resZ\" for item type \"polyRender\""},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"channels\": {\"resX\": 800.5}}]}",
       "scene.json:1:69: channel \"resX\" takes an integer, not 800.5"},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"channels\": {\"resX\": \"800\"}}]}",
       "scene.json:1:69: channel \"resX\" takes an integer, not a string"},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"channels\": {\"resX\": 4294967296}}]}",
       "scene.json:1:69: channel \"resX\" takes a 32-bit integer, not 4294967296"},
      {"{\"scene\": {\"channels\": {\"fps\": true}}}", "scene.json:1:32: channel \"fps\" takes a number, not a boolean"},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\", \"actions\": {\"edit\": {\"effect\": 3}}}]}",
       "scene.json:1:77: channel \"effect\" takes a string, not 3"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\"}],\n \"selection\": [\"A\", \"B\"]}",
       "scene.json:2:21: cannot select: no item \"B\""},
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
      {"{\"items\": [{\"type\": \"mesh\"}]}", "scene.json:1:12: item has no \"name\""},
      {"{\"items\": [{\"name\": \"A\"}]}", "scene.json:1:12: item \"A\" has no \"type\""},
      {"{\"items\": {}}", "scene.json:1:11: \"items\" takes an array, not an object"},
      {"[]", "scene.json:1:1: a scene file holds a JSON object, not an array"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"actions\": {\"run\": {}}}]}",
       "scene.json:1:54: unknown action \"run\"; actions are \"edit\" and the names of \"actionclip\" items"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"actions\": {\"setup\": {}}}]}",
       "scene.json:1:54: setup values are written under \"channels\", not as an action"},
      {"{\"time\": \"now\"}", "scene.json:1:10: \"time\" takes a number of seconds, not a string"},
      {"/* unclosed {\"items\": []}", "scene.json:1:26: unclosed comment, or a '/' that starts no comment"},
  };
  for (const ErrorCase& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
  // The 512th "[" opens the 513th level.
  EXPECT_EQ(readError("{\"items\": " + std::string(600, '[')), "scene.json:1:522: values nested too deeply");
}

TEST(SceneFile, MatrixValuesNeedSixteenNumbers) {
  TypeRegistry types({{"scene", nullptr, {}}, {"holder", nullptr, {{"xf", ValueType::Matrix, 0.0, nullptr}}}});
  auto read = [&](const std::string& value, std::string& error) {
    Scene scene(types);
    bool ok = readSceneText(R"({"items": [{"name": "H", "type": "holder", "channels": {"xf": )" + value + "}}]}",
                            "m.json", scene, error);
    return ok ? std::get<Matrix>(scene.item(1).value(0, "setup")) : Matrix{};
  };
  std::string error;
  Matrix m = read("[1,0,0,0, 0,1,0,0, 0,0,1,0, 5,6,7,1]", error);
  EXPECT_EQ(error, "");
  EXPECT_EQ(m[12], 5.0);
  EXPECT_EQ(m[14], 7.0);
  read("[1, 2, 3]", error);
  EXPECT_EQ(error, "m.json:1:63: channel \"xf\" takes a matrix of 16 numbers, not an array of 3");
  read("[1,0,0,0, 0,1,0,0, 0,0,1,0, 5,6,\"7\",1]", error);
  EXPECT_EQ(error, "m.json:1:95: matrix element 14 is a string, not a number");
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

TEST(SceneFile, TheShippedExampleReads) {
  Scene scene;
  std::string error;
  EXPECT_TRUE(readSceneFile(EXAMPLES_DIR "/empty.json", scene, error)) << error;
  EXPECT_EQ(scene.itemCount(), 1u);
}

}  // namespace
}  // namespace vexo
