// `vexo load-options` as a user runs it, across separate runs, and the
// options the glTF loader gets from what was persisted.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "command/persisted_load_options.h"
#include "loader/plugin_loader.h"
#include "services/configuration.h"
#include "services/host_services.h"
#include "vexo_runner.h"

namespace {

const char* const kRecordOrder[] = {
    "mergeWithExistingItems", "loadGeometry",       "loadMaterials",        "loadCameras",
    "loadLights",             "loadMeshSmoothing",  "loadBlendShapes",      "loadPolygonParts",
    "loadSelectionSets",      "loadAnimation",      "loadSampleAnimation",  "loadSampleAnimationRate",
    "loadNormals",            "invertMatTranAmt",   "useMatTranColAsTranAmt", "changeTextureEffect",
    "globalScalingFactor",    "importUnits"};

// Every run of the test gets its own configuration folder.
class LoadOptionsCli : public ::testing::Test {
 protected:
  void SetUp() override { ::setenv("VEXO_CONFIG_HOME", dir.path().c_str(), 1); }
  void TearDown() override { ::unsetenv("VEXO_CONFIG_HOME"); }

  static VexoRun loadOptions(std::vector<std::string> sets) {
    std::vector<std::string> args = {"load-options"};
    for (std::string& set : sets) args.insert(args.end(), {"--set", std::move(set)});
    return runVexo(args);
  }
  std::string configPath() const { return dir.file("config.json"); }

  TempDir dir;
};

TEST_F(LoadOptionsCli, PrintsTheHostDefaultsInAttributeOrder) {
  const VexoRun run = loadOptions({});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_EQ(run.out,
            "mergeWithExistingItems = false\n"
            "loadGeometry = true\n"
            "loadNormals = true\n"
            "loadMeshSmoothing = true\n"
            "loadBlendShapes = true\n"
            "loadPolygonParts = false\n"
            "loadSelectionSets = false\n"
            "loadMaterials = true\n"
            "invertMatTranAmt = false\n"
            "useMatTranColAsTranAmt = false\n"
            "changeTextureEffect = false\n"
            "loadCameras = true\n"
            "loadLights = true\n"
            "loadAnimation = true\n"
            "loadSampleAnimation = false\n"
            "loadSampleAnimationRate = 0 (1x FPS)\n"
            "globalScalingFactor = 1\n"
            "importUnits = 0 (Use FBX file units)\n");
  EXPECT_FALSE(fileExists(configPath()));  // only a change is written
}

TEST_F(LoadOptionsCli, OptionsSurviveARestartInRecordOrder) {
  VexoRun set = loadOptions({"loadGeometry=false", "importUnits=Meters [m]", "globalScalingFactor=2.5",
                             "loadSampleAnimationRate=1", "mergeWithExistingItems=1"});
  ASSERT_EQ(set.exitCode, 0) << set.errText();
  EXPECT_NE(set.out.find("vexo: saved the load options to \"" + configPath() + "\"\n"), std::string::npos);

  const VexoRun later = loadOptions({});
  ASSERT_EQ(later.exitCode, 0) << later.errText();
  for (const char* line : {"mergeWithExistingItems = true\n", "loadGeometry = false\n", "loadNormals = true\n",
                           "loadSampleAnimationRate = 1 (2x FPS)\n", "globalScalingFactor = 2.5\n",
                           "importUnits = 4 (Meters [m])\n"})
    EXPECT_NE(later.out.find(line), std::string::npos) << line << later.out;

  // A later change keeps the earlier ones.
  ASSERT_EQ(loadOptions({"loadCameras=false"}).exitCode, 0);
  vexo::Configuration config;
  std::string error;
  ASSERT_TRUE(config.read(configPath(), error)) << error;
  const vexo::ConfigSection* section = config.find("loaderOptions.gltf");
  ASSERT_NE(section, nullptr);
  ASSERT_EQ(section->entries.size(), std::size(kRecordOrder));
  for (std::size_t i = 0; i < section->entries.size(); ++i) EXPECT_EQ(section->entries[i].name, kRecordOrder[i]);
  EXPECT_FALSE(section->entries[1].value.boolean);  // loadGeometry
  EXPECT_FALSE(section->entries[3].value.boolean);  // loadCameras
  EXPECT_EQ(section->entries[16].value.number, 2.5);
  EXPECT_EQ(section->entries[17].value.integer, 4);
}

TEST_F(LoadOptionsCli, BadValueOrUnknownNameChangesNothing) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"bogus=1"}, "vexo: --set bogus=1: no load option is called \"bogus\" (see vexo load-options)"},
      {{"loadNormals=yes"}, "vexo: --set loadNormals=yes: loadNormals takes true or false, not \"yes\""},
      {{"loadSampleAnimationRate=2"},
       "vexo: --set loadSampleAnimationRate=2: loadSampleAnimationRate takes one of 0 \"1x FPS\", 1 \"2x FPS\", "
       "not \"2\""},
      {{"globalScalingFactor=big"}, "vexo: --set globalScalingFactor=big: globalScalingFactor takes a number, not \"big\""},
      {{"globalScalingFactor=nan"}, "vexo: --set globalScalingFactor=nan: globalScalingFactor takes a number, not \"nan\""},
      {{"globalScalingFactor=0"}, "vexo: --set: globalScalingFactor takes a number above 0"},
      {{"loadGeometry=true", "importUnits=-1"},
       "vexo: --set importUnits=-1: importUnits takes one of 0 \"Use FBX file units\", 1 \"Millimeters [mm]\", "
       "2 \"Decimeters [dm]\", 3 \"Centimeters [cm]\", 4 \"Meters [m]\", 5 \"Kilometers [km]\", 6 \"Inches\", "
       "7 \"Feet\", 8 \"Yards\", 9 \"Miles\", not \"-1\""},
      {{"loadGeometry"}, "vexo: --set takes NAME=VALUE, not \"loadGeometry\""},
  };
  // Nothing is created where there was no file...
  for (const auto& [sets, message] : cases) {
    const VexoRun run = loadOptions(sets);
    EXPECT_EQ(run.exitCode, 2) << message;
    EXPECT_TRUE(run.printed(message)) << run.errText();
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{});
  // ...and an existing file keeps its bytes.
  ASSERT_EQ(loadOptions({"loadGeometry=false"}).exitCode, 0);
  const std::string before = readFile(configPath());
  for (const auto& [sets, message] : cases) {
    const VexoRun run = loadOptions(sets);
    EXPECT_EQ(run.exitCode, 2) << message;
    EXPECT_TRUE(run.printed(message)) << run.errText();
  }
  EXPECT_EQ(readFile(configPath()), before);
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{"config.json"});
}

TEST_F(LoadOptionsCli, PersistedValuesTheOptionsRefuseAreErrorsWithTheirPlace) {
  const std::string path = dir.write("config.json",
                                     "{\n  \"loaderOptions.gltf\": {\n    \"loadGeometry\": 3,\n"
                                     "    \"importUnits\": 4\n  }\n}\n");
  VexoRun run = loadOptions({});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(run.printed("vexo: " + path + ":3:21: loaderOptions.gltf.loadGeometry takes true or false"))
      << run.errText();
  // Refused before any --set is applied, so the file stays as the user wrote it.
  const std::string before = readFile(path);
  run = loadOptions({"loadGeometry=true"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(readFile(path), before);

  dir.write("config.json", "{ \"loaderOptions.gltf\": { \"globalScalingFactor\": -2 } }");
  run = loadOptions({});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_TRUE(run.printed("vexo: " + path + ": loaderOptions.gltf: globalScalingFactor takes a number above 0"))
      << run.errText();

  dir.write("config.json", "{ \"loaderOptions.gltf\": { \"loadGeometry\": false, } ");
  run = loadOptions({});
  EXPECT_EQ(run.exitCode, 2);
  ASSERT_EQ(run.errLines.size(), 1u) << run.errText();
  EXPECT_EQ(run.errLines[0].rfind("vexo: " + path + ":1:", 0), 0u) << run.errText();
}

// The options the loader's caller gets from a loaded plug-in.
class PersistedLoadOptions : public LoadOptionsCli {
 protected:
  bool load(GltfLoadOptions& options, std::string& error) {
    vexo::HostServices services(nullptr);
    vexo::SdkHost host(services);
    std::unique_ptr<vexo::LoadedPlugin> plugin = vexo::LoadedPlugin::load(GLTFIO_MODULE_PATH, host, error);
    if (!plugin) return false;
    return vexo::persistedLoadOptions(host, options, error);
  }
};

TEST_F(PersistedLoadOptions, DefaultsOverriddenByWhatWasPersisted) {
  GltfLoadOptions options;
  options.loadGeometry = false;  // not the default: the call must set every option
  std::string error;
  ASSERT_TRUE(load(options, error)) << error;
  EXPECT_TRUE(options.loadGeometry);
  EXPECT_EQ(options.globalScalingFactor, 1.0);

  ASSERT_EQ(loadOptions({"loadGeometry=false", "loadNormals=false", "loadSampleAnimation=true",
                         "loadSampleAnimationRate=1", "globalScalingFactor=0.01", "importUnits=Feet"})
                .exitCode,
            0);
  ASSERT_TRUE(load(options, error)) << error;
  GltfLoadOptions expected;
  expected.loadGeometry = false;
  expected.loadNormals = false;
  expected.loadSampleAnimation = true;
  expected.loadSampleAnimationRate = 1;
  expected.globalScalingFactor = 0.01;
  expected.importUnits = 7;
  for (const char* name : kRecordOrder) {
    double got = -1, want = -2;
    ASSERT_TRUE(gltfLoadOptionValue(options, name, got));
    ASSERT_TRUE(gltfLoadOptionValue(expected, name, want));
    EXPECT_EQ(got, want) << name;
  }
}

TEST_F(PersistedLoadOptions, RefusedPersistedValueIsAnError) {
  const std::string path = dir.write("config.json", "{\"loaderOptions.gltf\": {\"importUnits\": 10}}");
  GltfLoadOptions options;
  std::string error;
  EXPECT_FALSE(load(options, error));
  EXPECT_EQ(error, path + ":1:40: loaderOptions.gltf.importUnits takes one of its choices");
}

// `vexo convert` loads with what was persisted: a file saved from the
// meshes example comes back without geometry once loadGeometry is off, and
// a bad configuration stops it before anything is written.
TEST_F(LoadOptionsCli, ConvertLoadsWithThePersistedOptions) {
  const std::string input = dir.file("meshes.glb");
  ASSERT_EQ(runVexo({"save", GLTFIO_EXAMPLES_DIR "/meshes.json", input, "--set", "sceneio.gltf.save.exportType=0"})
                .exitCode,
            0);
  VexoRun run = runVexo({"convert", input, dir.file("with.gltf")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_NE(readFile(dir.file("with.gltf")).find("\"POSITION\""), std::string::npos);

  ASSERT_EQ(loadOptions({"loadGeometry=false"}).exitCode, 0);
  run = runVexo({"convert", input, dir.file("without.gltf")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  const std::string without = readFile(dir.file("without.gltf"));
  EXPECT_EQ(without.find("\"POSITION\""), std::string::npos);
  EXPECT_NE(without.find("\"nodes\""), std::string::npos);

  dir.write("config.json", "{\"loaderOptions.gltf\": {\"loadGeometry\": 3}}");
  run = runVexo({"convert", input, dir.file("refused.gltf")});
  EXPECT_EQ(run.exitCode, 2) << run.errText();
  EXPECT_FALSE(fileExists(dir.file("refused.gltf")));
}

}  // namespace
