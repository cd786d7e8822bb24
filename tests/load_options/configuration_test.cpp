// The host's configuration file: where it lives, what a malformed one says,
// and how it is written.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "services/configuration.h"
#include "vexo_runner.h"

namespace {

using vexo::ConfigEntry;
using vexo::Configuration;
using vexo::ConfigValue;

// Sets (or, with null, clears) a variable for the scope, then puts back what was there.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old, had_ = true;
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
  }
  ~ScopedEnv() { had_ ? ::setenv(name_, old_.c_str(), 1) : ::unsetenv(name_); }

 private:
  const char* name_;
  std::string old_;
  bool had_ = false;
};

ConfigEntry entry(const char* name, ConfigValue::Kind kind, double number, const char* text = "") {
  ConfigEntry out;
  out.name = name;
  out.value.kind = kind;
  out.value.boolean = number != 0;
  out.value.integer = static_cast<std::int64_t>(number);
  out.value.number = number;
  out.value.text = text;
  return out;
}

TEST(ConfigFile, OwnVariableThenXdgThenHome) {
  ScopedEnv home("HOME", "/home/ann");
  {
    ScopedEnv own("VEXO_CONFIG_HOME", "/cfg");
    ScopedEnv xdg("XDG_CONFIG_HOME", "/xdg");
    std::string error;
    EXPECT_EQ(vexo::configFilePath(error), "/cfg/config.json");
  }
  {
    ScopedEnv own("VEXO_CONFIG_HOME", "");
    ScopedEnv xdg("XDG_CONFIG_HOME", "/xdg");
    std::string error;
    EXPECT_EQ(vexo::configFilePath(error), "/xdg/vexo/config.json");
  }
  {
    ScopedEnv own("VEXO_CONFIG_HOME", nullptr);
    ScopedEnv xdg("XDG_CONFIG_HOME", "");
    std::string error;
    EXPECT_EQ(vexo::configFilePath(error), "/home/ann/.config/vexo/config.json");
    ScopedEnv noHome("HOME", nullptr);
    EXPECT_EQ(vexo::configFilePath(error), "");
    EXPECT_NE(error.find("VEXO_CONFIG_HOME"), std::string::npos) << error;
  }
}

TEST(ConfigFile, MalformedFileNamesFileLineAndColumn) {
  const std::pair<const char*, const char*> cases[] = {
      {"{\n  \"loaderOptions.gltf\": {\n    \"loadGeometry\": tru\n  }\n}", "cfg.json:3:24: invalid JSON value"},
      {"[1]", "cfg.json:1:1: the configuration is an array, not an object of sections"},
      {"{\n \"a\": 3}", "cfg.json:2:7: section \"a\" is an integer, not an object"},
      {"{\"a\": {\"b\": [1]}}",
       "cfg.json:1:13: \"a.b\" is an array; a setting is a boolean, a number or a string"},
  };
  for (const auto& [text, expected] : cases) {
    Configuration config;
    std::string error;
    EXPECT_FALSE(config.parse(text, "cfg.json", error)) << text;
    EXPECT_EQ(error.substr(0, std::string(expected).size()), expected) << error;
    EXPECT_TRUE(config.sections().empty());
  }
}

TEST(ConfigFile, WritesSectionsInOrderAndReadsThemBack) {
  TempDir dir;
  const std::string path = dir.file("nested/folder/config.json");
  Configuration config;
  std::string error;
  ASSERT_TRUE(config.read(path, error)) << error;  // missing: empty
  EXPECT_TRUE(config.sections().empty());
  config.replace("first", {entry("z", ConfigValue::Kind::Boolean, 1), entry("a", ConfigValue::Kind::Float, 0.1)});
  config.replace("second", {entry("n", ConfigValue::Kind::Integer, -4), entry("t", ConfigValue::Kind::Text, 0, "q\"uote")});
  config.replace("first", {entry("k", ConfigValue::Kind::Integer, 9)});  // keeps its place
  ASSERT_TRUE(config.write(path, error)) << error;
  EXPECT_EQ(readFile(path),
            "{\n  \"first\": {\n    \"k\": 9\n  },\n  \"second\": {\n    \"n\": -4,\n    \"t\": \"q\\\"uote\"\n  }\n}\n");
  EXPECT_EQ(listDir(dir.file("nested/folder")).size(), 1u);  // no temporary left behind

  Configuration back;
  ASSERT_TRUE(back.read(path, error)) << error;
  ASSERT_EQ(back.sections().size(), 2u);
  EXPECT_EQ(back.text(), config.text());
  const ConfigEntry& text = back.find("second")->entries[1];
  EXPECT_EQ(text.value.text, "q\"uote");
  EXPECT_EQ(text.pos.line, 7u);
  EXPECT_EQ(text.pos.column, 10u);

  // Floats come back exactly.
  config.replace("first", {entry("a", ConfigValue::Kind::Float, 0.1), entry("b", ConfigValue::Kind::Float, 1.0)});
  ASSERT_TRUE(config.write(path, error)) << error;
  ASSERT_TRUE(back.read(path, error)) << error;
  EXPECT_EQ(back.find("first")->entries[0].value.number, 0.1);
  EXPECT_EQ(back.find("first")->entries[1].value.kind, ConfigValue::Kind::Float);
}

TEST(ConfigFile, FailedWriteLeavesWhatWasThere) {
  TempDir dir;
  const std::string path = dir.file("config.json");
  std::filesystem::create_directories(path + "/inside");  // a folder in the file's place
  Configuration config;
  config.replace("s", {entry("k", ConfigValue::Kind::Integer, 1)});
  std::string error;
  EXPECT_FALSE(config.write(path, error));
  EXPECT_EQ(error.rfind("cannot write " + path + ": ", 0), 0u) << error;
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{"config.json"});
  EXPECT_TRUE(std::filesystem::is_directory(path + "/inside"));
}

}  // namespace
