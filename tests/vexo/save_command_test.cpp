#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "command/cli.h"
#include "command/save_command.h"
#include "loader/plugin_loader.h"

namespace vexo {
namespace {

struct CliRun {
  int code;
  std::string out;
  std::vector<std::string> lines;  // standard error
};

CliRun vexo(std::vector<std::string> args) {
  args.insert(args.begin(), "vexo");
  std::vector<const char*> argv;
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  std::ostringstream out, err;
  CliRun run{runCli(static_cast<int>(argv.size()), argv.data(), out, err), out.str(), {}};
  std::istringstream lines(err.str());
  for (std::string line; std::getline(lines, line);) run.lines.push_back(line);
  return run;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

class SaveCommand : public ::testing::Test {
 protected:
  SaveCommand() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vexo-test-XXXXXX").string();
    dir_ = mkdtemp(pattern.data()) ? pattern : "";
  }
  ~SaveCommand() override { std::filesystem::remove_all(dir_); }

  std::string write(const std::string& name, const std::string& text) {
    std::string path = dir_ + "/" + name;
    std::ofstream(path) << text;
    return path;
  }

  // A save through the recording plug-in.
  CliRun save(std::vector<std::string> args) {
    args.insert(args.begin(), "save");
    args.insert(args.end(), {"--plugin", RECORDING_PLUGIN});
    return vexo(args);
  }

  std::string dir_;
  const std::string empty_ = EXAMPLES_DIR "/empty.json";
};

TEST_F(SaveCommand, RunsTheVerifyPassThenTheRealSaveOnOneSaver) {
  CliRun run = save({empty_, "out.glb"});
  EXPECT_EQ(run.code, kExitOk);
  EXPECT_EQ(joined(run.lines),
            "info: gltf.bin #1 save real=0 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 save real=1 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 released\n");

  run = save({empty_, "out.glb", "--verify-only"});
  EXPECT_EQ(run.code, kExitOk);
  EXPECT_EQ(joined(run.lines),
            "info: gltf.bin #1 save real=0 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 released\n");
}

TEST_F(SaveCommand, FormatOrDestinationPicksTheSaver) {
  EXPECT_STREQ(saverName("", "a/b.gltf"), "gltf.gltf");
  EXPECT_STREQ(saverName("", "a/b.glb"), "gltf.bin");
  EXPECT_STREQ(saverName("", "a.gltf/b"), "gltf.bin");
  EXPECT_STREQ(saverName("", "b.GLTF"), "gltf.bin");
  EXPECT_STREQ(saverName("gltf", "b.glb"), "gltf.gltf");
  EXPECT_STREQ(saverName("glb", "b.gltf"), "gltf.bin");

  CliRun run = save({empty_, "scene.gltf"});
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines[0], "info: gltf.gltf #1 save real=0 dest=scene.gltf selection= fps=24");
  run = save({"--format", "glb", empty_, "scene.gltf"});
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines[0], "info: gltf.bin #1 save real=0 dest=scene.gltf selection= fps=24");
}

TEST_F(SaveCommand, SelectAppendsToTheSceneFilesSelectionInOrder) {
  std::string scene = write("sel.json", R"({
    "scene": {"channels": {"fps": 30}},
    "items": [{"name": "A", "type": "mesh"}, {"name": "B", "type": "locator"},
              {"name": "C", "type": "camera", "id": "cam"}],
    "selection": ["B"]
  })");
  CliRun run = save({"--select", "cam", scene, "--set", "k=1", "out.glb", "--select", "A", "--select", "B"});
  EXPECT_EQ(run.code, kExitOk) << joined(run.lines);
  ASSERT_FALSE(run.lines.empty());
  EXPECT_EQ(run.lines[0], "info: gltf.bin #1 save real=0 dest=out.glb selection=B,C,A fps=30");
}

TEST_F(SaveCommand, SaveFailuresExitWithOne) {
  CliRun run = save({empty_, "out.glb", "--set", "test.result=-2147483648"});
  EXPECT_EQ(run.code, kExitSaveFailed);
  EXPECT_EQ(joined(run.lines),
            "info: gltf.bin #1 save real=0 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 save real=1 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 released\n"
            "vexo: saving \"out.glb\" failed with result 0x80000000\n");

  // A failed verify pass stops before the real save.
  run = save({empty_, "out.glb", "--set", "test.verifyResult=-2147483645"});
  EXPECT_EQ(run.code, kExitSaveFailed);
  EXPECT_EQ(joined(run.lines),
            "info: gltf.bin #1 save real=0 dest=out.glb selection= fps=24\n"
            "info: gltf.bin #1 released\n"
            "vexo: saving \"out.glb\" failed with result 0x80000003\n");

  // Success codes other than zero are still success.
  EXPECT_EQ(save({empty_, "out.glb", "--set", "test.result=2"}).code, kExitOk);
}

TEST_F(SaveCommand, UsageSceneAndPluginProblemsExitWithTwo) {
  std::string bad = write("bad.json", "{\n  \"items\": [ {\"name\": \"X\", \"type\": \"lokator\"} ]\n}\n");
  const struct {
    std::vector<std::string> args;
    std::string lastLine;  // empty: only the exit code is checked
  } cases[] = {
      {{"save", empty_}, ""},
      {{}, ""},
      {{"save", empty_, "out.glb", "--format", "fbx"}, ""},
      {{"save", empty_, "out.glb", "--set", "novalue", "--plugin", RECORDING_PLUGIN},
       "vexo: --set takes KEY=VALUE, not \"novalue\""},
      {{"save", bad, "out.glb", "--plugin", RECORDING_PLUGIN},
       "vexo: " + bad + ":2:36: unknown item type \"lokator\""},
      {{"save", empty_, "out.glb", "--select", "Ghost", "--plugin", RECORDING_PLUGIN},
       "vexo: --select Ghost: no item \"Ghost\""},
      {{"save", empty_, "out.glb", "--plugin", dir_ + "/missing.vx"},
       "vexo: cannot load plug-in \"" + dir_ + "/missing.vx\": " + dir_ +
           "/missing.vx: cannot open shared object file: No such file or directory"},
      {{"save", empty_, "out.glb", "--plugin", NO_ENTRY_PLUGIN},
       "vexo: plug-in \"" NO_ENTRY_PLUGIN "\" has no entry point _IVxModule_Create: " NO_ENTRY_PLUGIN
       ": undefined symbol: _IVxModule_Create"},
      {{"save", empty_, "out.glb", "--plugin", RECORDING_PLUGIN, "--set", "test.noModule=1"},
       "vexo: plug-in \"" RECORDING_PLUGIN "\": _IVxModule_Create returned no module"},
      {{"save", empty_, "out.gltf", "--plugin", RECORDING_PLUGIN, "--set", "test.onlyGlb=1"},
       "vexo: plug-in \"" RECORDING_PLUGIN "\" has no saver \"gltf.gltf\""},
  };
  for (const auto& c : cases) {
    CliRun run = vexo(c.args);
    EXPECT_EQ(run.code, kExitUsage) << joined(c.args);
    ASSERT_FALSE(run.lines.empty()) << joined(c.args);
    if (!c.lastLine.empty()) {
      EXPECT_EQ(run.lines.back(), c.lastLine);
    }
    for (const std::string& line : run.lines) EXPECT_EQ(line.find("save real="), std::string::npos) << line;
  }
}

TEST_F(SaveCommand, PluginPathComesFromTheOptionThenTheEnvironment) {
  EXPECT_EQ(pluginPath("x.vx"), "x.vx");
  ASSERT_EQ(setenv("VEXO_PLUGIN_PATH", RECORDING_PLUGIN, 1), 0);
  EXPECT_EQ(pluginPath(""), RECORDING_PLUGIN);
  EXPECT_EQ(vexo({"save", empty_, "out.glb"}).code, kExitOk);
  ASSERT_EQ(setenv("VEXO_PLUGIN_PATH", (dir_ + "/missing.vx").c_str(), 1), 0);
  EXPECT_EQ(save({empty_, "out.glb"}).code, kExitOk);
  EXPECT_EQ(vexo({"save", empty_, "out.glb"}).code, kExitUsage);
  ASSERT_EQ(unsetenv("VEXO_PLUGIN_PATH"), 0);
  std::string besideSelf = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "gltfio.vx";
  EXPECT_EQ(pluginPath(""), besideSelf);
}

TEST_F(SaveCommand, HelpGoesToStandardOutput) {
  CliRun run = vexo({"save", "--help"});
  EXPECT_EQ(run.code, kExitOk);
  EXPECT_NE(run.out.find("--verify-only"), std::string::npos);
}

}  // namespace
}  // namespace vexo
