// `vexo inspect`: the host's items and world matrices as JSON.
#include <gtest/gtest.h>

#include <rapidjson/document.h>

#include "vexo_runner.h"

namespace {

const std::string kScene = R"({
  "time": 1.5,
  "items": [
    { "name": "Base", "type": "locator", "id": "base", "position": [10, 0, 0],
      "children": [ { "name": "Tip", "type": "locator", "position": [0, 2, 0], "scale": [2, 2, 2] } ] },
    { "name": "Look", "type": "imageMap" }
  ]
})";

const rapidjson::Value* findItem(const rapidjson::Document& json, const char* id) {
  for (const auto& item : json["items"].GetArray())
    if (std::string(item["id"].GetString()) == id) return &item;
  return nullptr;
}

std::vector<double> numbers(const rapidjson::Value& array) {
  std::vector<double> values;
  for (const auto& value : array.GetArray()) values.push_back(value.GetDouble());
  return values;
}

TEST(Inspect, EveryItemWithParentAndRowMajorWorldMatrix) {
  TempDir dir;
  const std::string scene = dir.write("scene.json", kScene);
  const VexoRun run = runVexo({"inspect", scene});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_TRUE(run.errLines.empty()) << run.errText();
  rapidjson::Document json;
  ASSERT_FALSE(json.Parse(run.out.c_str()).HasParseError()) << run.out;

  // Defaults: the action and time `vexo save` evaluates.
  EXPECT_STREQ(json["action"].GetString(), "edit");
  EXPECT_EQ(json["time"].GetDouble(), 1.5);
  // The scene item, the two locators with three transform items each, the image map.
  ASSERT_EQ(json["items"].Size(), 1u + 4u + 4u + 1u);
  const rapidjson::Value& first = json["items"][0];
  EXPECT_STREQ(first["type"].GetString(), "scene");
  // Items that are no locators show the frame their children inherit.
  EXPECT_EQ(numbers(first["world"]), (std::vector<double>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));

  const rapidjson::Value* base = findItem(json, "base");
  ASSERT_NE(base, nullptr);
  EXPECT_STREQ((*base)["name"].GetString(), "Base");
  EXPECT_STREQ((*base)["type"].GetString(), "locator");
  EXPECT_TRUE((*base)["parent"].IsNull());
  EXPECT_EQ(numbers((*base)["world"]),
            (std::vector<double>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 0, 0, 1}));

  const rapidjson::Value* tip = findItem(json, "Tip");
  ASSERT_NE(tip, nullptr);
  EXPECT_STREQ((*tip)["parent"].GetString(), "base");
  EXPECT_EQ(numbers((*tip)["world"]),
            (std::vector<double>{2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 10, 2, 0, 1}));

  const rapidjson::Value* look = findItem(json, "Look");
  ASSERT_NE(look, nullptr);
  EXPECT_EQ(numbers((*look)["world"]), (std::vector<double>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));

  const VexoRun later = runVexo({"inspect", scene, "--time", "3", "--action", "setup"});
  ASSERT_EQ(later.exitCode, 0) << later.errText();
  rapidjson::Document other;
  ASSERT_FALSE(other.Parse(later.out.c_str()).HasParseError());
  EXPECT_STREQ(other["action"].GetString(), "setup");
  EXPECT_EQ(other["time"].GetDouble(), 3.0);

  const VexoRun unknown = runVexo({"inspect", scene, "--action", "run"});
  EXPECT_EQ(unknown.exitCode, 2);
  EXPECT_TRUE(unknown.printed("vexo: unknown action \"run\"; actions are \"setup\", \"edit\" and the names of \"actionclip\" items"))
      << unknown.errText();
}

TEST(Inspect, UnreadableSceneIsAUsageError) {
  TempDir dir;
  const VexoRun run = runVexo({"inspect", dir.file("missing.json")});
  EXPECT_EQ(run.exitCode, 2);
  ASSERT_EQ(run.errLines.size(), 1u) << run.errText();
  EXPECT_EQ(run.errLines[0].rfind("vexo: " + dir.file("missing.json"), 0), 0u);
  EXPECT_EQ(run.out, "");
}

}  // namespace
