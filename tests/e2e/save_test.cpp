// `vexo save` through the loaded plug-in: what files it writes, what it
// prints, and how it fails.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>

#include "validator.h"
#include "vexo_runner.h"

namespace {

const std::string kEmptyScene = R"({ "items": [] })";

std::string emptySceneJson(const char* bufferUri) {
  std::string buffer = R"({"byteLength":0)";
  if (bufferUri) buffer += std::string(R"(,"uri":")") + bufferUri + "\"";
  buffer += "}";
  return R"({"asset":{"generator":"Vexov11.2","version":"2.0"},"scene":0,"scenes":[{"nodes":[]}],"nodes":[],)"
         R"("meshes":[],"buffers":[)" +
         buffer +
         R"(],"bufferViews":[],"accessors":[],)"
         R"("materials":[{"pbrMetallicRoughness":{"metallicFactor":0.5,"roughnessFactor":0.5}}]})";
}

std::uint32_t u32At(const std::string& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data() + offset, 4);
  return value;
}

TEST(SaveEmptyScene, GltfAndBinHoldExactlyTheEmptyDocument) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  const VexoRun run = runVexo({"save", scene, dir.file("out.gltf")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();

  EXPECT_EQ(readFile(dir.file("out.gltf")), emptySceneJson("out.bin"));
  EXPECT_EQ(readFile(dir.file("out.bin")), "");
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"empty.json", "out.bin", "out.gltf"}));
  EXPECT_TRUE(isValidGltf(dir.file("out.gltf")));
}

TEST(SaveEmptyScene, GlbHasHeaderPaddedJsonChunkAndEmptyBinChunk) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  // Any destination other than ".gltf" is a ".glb", written under that exact name.
  const VexoRun run = runVexo({"save", scene, dir.file("out.model")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();

  const std::string bytes = readFile(dir.file("out.model"));
  const std::string json = emptySceneJson(nullptr);
  const std::size_t padded = (json.size() + 3) / 4 * 4;
  ASSERT_EQ(bytes.size(), 12 + 8 + padded + 8);
  EXPECT_EQ(bytes.substr(0, 4), "glTF");
  EXPECT_EQ(u32At(bytes, 4), 2u);
  EXPECT_EQ(u32At(bytes, 8), bytes.size());
  EXPECT_EQ(u32At(bytes, 12), padded);
  EXPECT_EQ(u32At(bytes, 16), 0x4E4F534Au);
  EXPECT_EQ(bytes.substr(20, json.size()), json);
  EXPECT_EQ(bytes.substr(20 + json.size(), padded - json.size()), std::string(padded - json.size(), ' '));
  EXPECT_EQ(u32At(bytes, 20 + padded), 0u);
  EXPECT_EQ(u32At(bytes, 24 + padded), 0x004E4942u);
  EXPECT_TRUE(isValidGltf(dir.file("out.model")));
}

TEST(SaveEmptyScene, FormatOptionWinsOverTheExtension) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  ASSERT_EQ(runVexo({"save", scene, dir.file("a.gltf"), "--format", "glb"}).exitCode, 0);
  EXPECT_EQ(readFile(dir.file("a.gltf")).substr(0, 4), "glTF");
  ASSERT_EQ(runVexo({"save", scene, dir.file("b.glb"), "--format", "gltf"}).exitCode, 0);
  EXPECT_TRUE(fileExists(dir.file("b.gltf")));
  EXPECT_TRUE(fileExists(dir.file("b.bin")));
  EXPECT_FALSE(fileExists(dir.file("b.glb")));
}

TEST(SaveEmptyScene, VerifyPassAloneWritesNothing) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  const VexoRun run = runVexo({"save", scene, dir.file("out.gltf"), "--verify-only"});
  EXPECT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{"empty.json"});
  EXPECT_TRUE(run.printed("info: glTf v2 :: InitSaver()"));
  EXPECT_FALSE(run.printed("info: RunSaver()"));
}

TEST(SaveLog, PhasesInOrderAndNoSummaryWhenNothingWasCounted) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  const VexoRun run = runVexo({"save", scene, dir.file("out.glb")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  const int init = run.lineIndex("info: glTf v2 :: InitSaver()");
  const int scanned = run.lineIndex("info: Scanning finished, rootItems:0");
  const int runSaver = run.lineIndex("info: RunSaver()");
  const int done = run.lineIndex("info: ...DONE");
  ASSERT_GE(init, 0) << run.errText();
  EXPECT_LT(init, scanned);
  EXPECT_LT(scanned, runSaver);
  EXPECT_LT(runSaver, done);
  for (const std::string& line : run.errLines) EXPECT_EQ(line.find("There are"), std::string::npos) << line;
}

TEST(SaveFailure, MissingFolderIsAnErrorWithPathAndReason) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  const std::string dest = dir.file("missing/out.glb");
  const VexoRun run = runVexo({"save", scene, dest});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.printed("error: Cannot write " + dest + ": No such file or directory")) << run.errText();
  EXPECT_TRUE(run.printed("error: Failed to export GLTF!")) << run.errText();
  // The writer's error is counted; the reported failure itself is not.
  EXPECT_TRUE(run.printed("warning: There are 0 warnings and 1 errors reported to event log")) << run.errText();
  EXPECT_FALSE(run.printed("info: ...DONE"));
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{"empty.json"});
}

TEST(SaveFailure, FolderInTheWayLeavesTheEarlierOutputAlone) {
  TempDir dir;
  const std::string scene = dir.write("empty.json", kEmptyScene);
  ASSERT_EQ(runVexo({"save", scene, dir.file("out.gltf")}).exitCode, 0);
  const std::string goodJson = readFile(dir.file("out.gltf"));

  // The ".bin" cannot be replaced: neither file may change, and no temporary stays behind.
  std::filesystem::remove(dir.file("out.bin"));
  std::filesystem::create_directory(dir.file("out.bin"));
  const VexoRun run = runVexo({"save", scene, dir.file("out.gltf")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.printed("error: Failed to export GLTF!")) << run.errText();
  EXPECT_EQ(readFile(dir.file("out.gltf")), goodJson);
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"empty.json", "out.bin", "out.gltf"}));

  // A folder where the ".glb" should go is refused the same way.
  std::filesystem::create_directory(dir.file("model.glb"));
  const VexoRun glb = runVexo({"save", scene, dir.file("model.glb")});
  EXPECT_EQ(glb.exitCode, 1);
  EXPECT_TRUE(std::filesystem::is_directory(dir.file("model.glb")));
}

TEST(SaveFailure, UnreadableSceneFileNamesFileLineAndColumn) {
  TempDir dir;
  const std::string scene = dir.write("broken.json", "{\n  \"items\": [\n    { \"name\": \"A\", \"type\": \"lokator\" }\n  ]\n}\n");
  const VexoRun run = runVexo({"save", scene, dir.file("out.glb")});
  EXPECT_EQ(run.exitCode, 2);
  ASSERT_EQ(run.errLines.size(), 1u) << run.errText();
  EXPECT_EQ(run.errLines[0].rfind("vexo: " + scene + ":3:", 0), 0u) << run.errLines[0];
  EXPECT_NE(run.errLines[0].find("lokator"), std::string::npos);
  EXPECT_EQ(listDir(dir.path()), std::vector<std::string>{"broken.json"});
}

}  // namespace
