// What `vexo save` tells the user besides the event log: the files it wrote
// on standard output, and a hint when the default export has nothing to take.
#include <gtest/gtest.h>

#include <filesystem>

#include "limited_run.h"
#include "validator.h"
#include "vexo_runner.h"

namespace {

namespace fs = std::filesystem;

std::string wrote(const std::string& path) {
  return "vexo: wrote \"" + path + "\" (" + std::to_string(fs::file_size(path)) + " bytes)\n";
}

const std::string kHint =
    "vexo: nothing is selected, so the export of the selected items (export type 1, the default) is empty; add "
    "items with --select NAME, or export the whole scene with --set sceneio.gltf.save.exportType=0";

TEST(SavedFiles, NamesEachWrittenFileWithItsSize) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(3));
  const VexoRun glb = runVexo({"save", scene, dir.file("out.glb"), "--select", "Grid"});
  ASSERT_EQ(glb.exitCode, 0) << glb.errText();
  EXPECT_EQ(glb.out, wrote(dir.file("out.glb")));
  EXPECT_TRUE(isValidGltf(dir.file("out.glb")));

  // The ".bin" is named as the ".gltf" refers to it, percent-encoding undone;
  // the stem ends at the last '.', as the savers take it.
  const VexoRun gltf = runVexo({"save", scene, dir.file("my scene.v2.glb"), "--format", "gltf", "--select", "Grid"});
  ASSERT_EQ(gltf.exitCode, 0) << gltf.errText();
  EXPECT_EQ(gltf.out, wrote(dir.file("my scene.v2.gltf")) + wrote(dir.file("my scene.v2.bin")));
  EXPECT_TRUE(isValidGltf(dir.file("my scene.v2.gltf")));

  // A verify pass writes nothing and names nothing; neither does a failed save.
  EXPECT_EQ(runVexo({"save", scene, dir.file("v.glb"), "--verify-only", "--select", "Grid"}).out, "");
  EXPECT_EQ(runVexo({"save", scene, dir.file("missing/out.glb"), "--select", "Grid"}).out, "");
}

TEST(SavedFiles, HintWhenTheDefaultExportHasNothingSelected) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(1));
  const struct {
    std::vector<std::string> args;
    bool hint;
  } cases[] = {
      {{}, true},
      {{"--set", "sceneio.gltf.save.exportType=1"}, true},
      // Not an integer: the saver keeps its default, the selected items.
      {{"--set", "sceneio.gltf.save.exportType=1.0"}, true},
      {{"--set", "sceneio.gltf.save.exportType=0"}, false},
      {{"--set", "sceneio.gltf.save.exportType=2"}, false},
      {{"--select", "Grid"}, false},
  };
  for (const auto& c : cases) {
    std::vector<std::string> args = {"save", scene, dir.file("out.glb")};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const VexoRun run = runVexo(args);
    SCOPED_TRACE(c.args.empty() ? "defaults" : c.args.back());
    ASSERT_EQ(run.exitCode, 0) << run.errText();
    EXPECT_EQ(run.printed(kHint), c.hint) << run.errText();
    EXPECT_TRUE(isValidGltf(dir.file("out.glb")));
  }
}

}  // namespace
