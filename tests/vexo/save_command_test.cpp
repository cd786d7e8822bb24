// `vexo save` through a plug-in that logs what the host hands its savers.
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
  std::string out, err;
};

CliRun vexo(std::vector<std::string> args) {
  args.insert(args.begin(), "vexo");
  std::vector<const char*> argv;
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  std::ostringstream out, err;
  const int code = runCli(static_cast<int>(argv.size()), argv.data(), out, err);
  return {code, out.str(), err.str()};
}

class SaveCommand : public ::testing::Test {
 protected:
  SaveCommand() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vexo-test-XXXXXX").string();
    dir_ = mkdtemp(pattern.data()) ? pattern : "";
  }
  ~SaveCommand() override { std::filesystem::remove_all(dir_); }

  // A save through the recording plug-in.
  CliRun save(std::vector<std::string> args) {
    args.insert(args.begin(), "save");
    args.insert(args.end(), {"--plugin", RECORDING_PLUGIN});
    return vexo(args);
  }

  std::string dir_;
  const std::string empty_ = EXAMPLES_DIR "/empty.json";
};

TEST_F(SaveCommand, VerifyPassThenRealSaveOnOneSaverAndTheirResults) {
  const std::string verify = "info: gltf.bin #1 save real=0 dest=out.glb selection=\n";
  // The empty scene selects nothing, so every successful save ends with the hint.
  const std::string hint =
      "vexo: nothing is selected, so the export of the selected items (export type 1, the default) is empty; add "
      "items with --select NAME, or export the whole scene with --set sceneio.gltf.save.exportType=0\n";
  const std::string real = "info: gltf.bin #1 save real=1 dest=out.glb selection=\n";
  const std::string released = "info: gltf.bin #1 released\n";
  const struct {
    std::vector<std::string> args;
    int code;
    std::string err;
  } cases[] = {
      {{"out.glb"}, kExitOk, verify + real + released + hint},
      {{"out.glb", "--verify-only"}, kExitOk, verify + released + hint},
      {{"out.glb", "--set", "test.result=-2147483648"}, kExitSaveFailed,
       verify + real + released + "vexo: saving \"out.glb\" failed with result 0x80000000\n"},
      // A failed verify pass stops before the real save.
      {{"out.glb", "--set", "test.verifyResult=-2147483645"}, kExitSaveFailed,
       verify + released + "vexo: saving \"out.glb\" failed with result 0x80000003\n"},
      // Success codes other than zero are still success.
      {{"out.glb", "--set", "test.result=2"}, kExitOk, verify + real + released + hint},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {empty_};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const CliRun run = save(args);
    EXPECT_EQ(run.code, c.code) << c.args.back();
    EXPECT_EQ(run.err, c.err);
  }
}

TEST_F(SaveCommand, FormatOrDestinationPicksTheSaver) {
  EXPECT_STREQ(saverName("", "a/b.gltf"), "gltf.gltf");
  EXPECT_STREQ(saverName("", "a/b.glb"), "gltf.bin");
  EXPECT_STREQ(saverName("", "a.gltf/b"), "gltf.bin");
  EXPECT_STREQ(saverName("", "b.GLTF"), "gltf.bin");
  EXPECT_STREQ(saverName("gltf", "b.glb"), "gltf.gltf");
  EXPECT_STREQ(saverName("glb", "b.gltf"), "gltf.bin");
}

TEST_F(SaveCommand, SelectAppendsToTheSceneFilesSelectionInOrder) {
  const std::string scene = dir_ + "/sel.json";
  std::ofstream(scene) << R"({
    "items": [{"name": "A", "type": "mesh"}, {"name": "B", "type": "locator"},
              {"name": "C", "type": "camera", "id": "cam"}],
    "selection": ["B"]
  })";
  const CliRun run = save({"--select", "cam", scene, "--set", "k=1", "out.glb", "--select", "A", "--select", "B"});
  EXPECT_EQ(run.code, kExitOk) << run.err;
  EXPECT_EQ(run.err.substr(0, run.err.find('\n')), "info: gltf.bin #1 save real=0 dest=out.glb selection=B,C,A");
}

TEST_F(SaveCommand, UsageAndPluginProblemsExitWithTwo) {
  const struct {
    std::vector<std::string> args;
    std::string lastLine;  // empty: only the exit code is checked
  } cases[] = {
      {{"save", empty_}, "vexo: destination is required (see vexo save --help)"},
      {{}, "vexo: A subcommand is required (see vexo --help)"},
      {{"save", empty_, "out.glb", "--format", "fbx"},
       "vexo: --format: fbx not in {glb,gltf} (see vexo save --help)"},
      {{"save", empty_, "out.glb", "--frobnicate"},
       "vexo: The following argument was not expected: --frobnicate (see vexo save --help)"},
      {{"inspect"}, "vexo: scene is required (see vexo inspect --help)"},
      {{"inspect", empty_, "--time", "soon"}, ""},
      {{"save", empty_, "out.glb", "--set", "novalue", "--plugin", RECORDING_PLUGIN},
       "vexo: --set takes KEY=VALUE, not \"novalue\""},
      {{"save", empty_, "out.glb", "--select", "Ghost", "--plugin", RECORDING_PLUGIN},
       "vexo: --select Ghost: no item \"Ghost\""},
      {{"save", empty_, "out.glb", "--plugin", dir_ + "/missing.vx"},
       "vexo: cannot load plug-in \"" + dir_ + "/missing.vx\": " + dir_ +
           "/missing.vx: cannot open shared object file: No such file or directory"},
      {{"save", empty_, "out.glb", "--plugin", NO_ENTRY_PLUGIN},
       "vexo: plug-in \"" NO_ENTRY_PLUGIN "\" has no entry point _IVxModule_Create: " NO_ENTRY_PLUGIN
       ": undefined symbol: _IVxModule_Create"},
      {{"save", empty_, "out.gltf", "--plugin", RECORDING_PLUGIN, "--set", "test.onlyGlb=1"},
       "vexo: plug-in \"" RECORDING_PLUGIN "\" has no saver \"gltf.gltf\""},
  };
  for (const auto& c : cases) {
    const CliRun run = vexo(c.args);
    SCOPED_TRACE(run.err);
    EXPECT_EQ(run.code, kExitUsage);
    ASSERT_FALSE(run.err.empty());
    const std::string lastLine = run.err.substr(run.err.rfind('\n', run.err.size() - 2) + 1);
    EXPECT_TRUE(c.lastLine.empty() || lastLine == c.lastLine + "\n") << lastLine;
    EXPECT_EQ(run.err.find("save real="), std::string::npos);
    // Every line is vexo's own.
    for (std::size_t at = 0; at < run.err.size(); at = run.err.find('\n', at) + 1)
      EXPECT_EQ(run.err.compare(at, 6, "vexo: "), 0) << run.err;
  }
}

TEST_F(SaveCommand, ModuleThatFailsToBuildItselfIsAFailureNotBadUsage) {
  const CliRun run = save({empty_, "out.glb", "--set", "test.noModule=1"});
  EXPECT_EQ(run.code, kExitSaveFailed);
  EXPECT_EQ(run.err, "vexo: plug-in \"" RECORDING_PLUGIN "\": _IVxModule_Create returned no module\n");
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
  EXPECT_EQ(pluginPath(""), (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "gltfio.vx").string());
}

TEST_F(SaveCommand, HelpGoesToStandardOutput) {
  const CliRun run = vexo({"save", "--help"});
  EXPECT_EQ(run.code, kExitOk);
  EXPECT_NE(run.out.find("--verify-only"), std::string::npos);
}

}  // namespace
}  // namespace vexo
