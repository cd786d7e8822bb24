// Output files: names, the ".glb" container, images, and what happens when a
// destination cannot be written.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "gltf/paths.h"
#include "test_util.h"
#include "validator.h"

namespace {

TEST(GltfOutput, StemIsCutAtTheLastDotOfTheWholePath) {
  EXPECT_EQ(gltf::pathStem("out/scene.glb"), "out/scene");
  EXPECT_EQ(gltf::pathStem("out/scene"), "out/scene");
  EXPECT_EQ(gltf::pathFileName("C:\\assets\\scene.bin"), "scene.bin");
  EXPECT_EQ(gltf::pathFolder("C:\\assets/x\\scene.bin"), "C:\\assets/x\\");
  EXPECT_EQ(gltf::uriFromFileName("my tex#1%.png"), "my%20tex%231%25.png");

  ScratchDir dir;
  std::filesystem::create_directory(dir / "a.b");
  GltfDocument doc(settingsFor(true, nullptr));
  doc.addIndexAccessor({0, 1, 2});
  ASSERT_TRUE(doc.write(dir / "a.b/scene"));
  EXPECT_EQ(dir.list(), (std::vector<std::string>{"a.b", "a.bin", "a.gltf"}));
  const auto json = parseJson(readFile(dir / "a.gltf"));
  EXPECT_STREQ(json["buffers"][0]["uri"].GetString(), "a.bin");
  EXPECT_EQ(readFile(dir / "a.bin"), std::string("\0\0\1\0\2\0\0\0", 8));
}

TEST(GltfOutput, GlbChunksArePaddedAndTheLengthIsTheFileSize) {
  ScratchDir dir;
  std::set<std::size_t> remainders;
  // Each longer name lengthens the JSON by one byte: four names meet every remainder modulo 4.
  for (const std::string name : {"", "n", "nn", "nnn"}) {
    GltfDocument doc(settingsFor(false, nullptr));
    doc.addNode(doc.root(), name.c_str());
    doc.addIndexAccessor({0, 1, 2});
    const std::string json = doc.json("x.glb");
    remainders.insert(json.size() % 4);
    const std::string path = dir / ("padded" + name + ".glb");
    ASSERT_TRUE(doc.write(path));

    const std::string glb = readFile(path);
    const std::size_t padding = (4 - json.size() % 4) % 4;
    EXPECT_EQ(glbJson(glb), json + std::string(padding, ' '));
    EXPECT_EQ(le32(glb, 20 + json.size() + padding + 4), 0x004E4942u);  // "BIN\0" right after the padding
    EXPECT_EQ(glbBin(glb), std::string("\0\0\1\0\2\0\0\0", 8));
    EXPECT_EQ(le32(glb, 8), glb.size());
    EXPECT_EQ(glb.size(), 20 + json.size() + padding + 8 + 8);
    EXPECT_TRUE(isValidGltf(path));
  }
  EXPECT_EQ(remainders.size(), 4u);
}

TEST(GltfOutput, ImagesAreCopiedBesideTheGltfOrEmbeddedInTheGlb) {
  ScratchDir dir;
  std::filesystem::create_directories(dir / "src");
  std::filesystem::create_directories(dir / "out");
  writeFile(dir / "src/my tex.png", tinyPng());
  for (const bool separate : {true, false}) {
    GltfDocument doc(settingsFor(separate, nullptr));
    const std::uint32_t image = doc.addImage(dir / "src/my tex.png", 1);
    EXPECT_EQ(doc.addImage(dir / "src/my tex.png", 1), image);
    GltfMaterialDesc material;
    material.name = "m";
    material.baseColorTexture.index = doc.addTexture("tex", "tex", doc.addSampler(10497, 10497), image);
    doc.addMaterial(material);
    const std::string destination = dir / (separate ? "out/scene.gltf" : "out/scene.glb");
    ASSERT_TRUE(doc.write(destination));
    const std::string written = readFile(destination);

    if (separate) {
      EXPECT_STREQ(parseJson(written)["images"][0]["uri"].GetString(), "my%20tex.png");
      EXPECT_EQ(readFile(dir / "out/my tex.png"), tinyPng());
      EXPECT_EQ(readFile(dir / "out/scene.bin"), "");
    } else {
      // The view covers the file; the block and the buffer are padded to 4.
      const auto json = parseJson(glbJson(written));
      EXPECT_EQ(json["bufferViews"][json["images"][0]["bufferView"].GetUint()]["byteLength"].GetUint(), 70u);
      EXPECT_EQ(json["buffers"][0]["byteLength"].GetUint(), 72u);
      EXPECT_EQ(glbBin(written), tinyPng() + std::string(2, '\0'));
    }
    EXPECT_TRUE(isValidGltf(destination));
  }
}

TEST(GltfOutput, MissingImageIsReportedOnceAndLeftOut) {
  ScratchDir dir;
  RecordingReporter log;
  GltfDocument doc(settingsFor(false, &log));
  std::filesystem::create_directory(dir / "folder.png");
  EXPECT_EQ(doc.addImage(dir / "gone.png", 1), GltfDocument::kNone);
  EXPECT_EQ(doc.addImage(dir / "gone.png", 1), GltfDocument::kNone);
  EXPECT_EQ(doc.addImage(dir / "folder.png", 1), GltfDocument::kNone);
  EXPECT_EQ(log.lines, (std::vector<std::string>{"warning: Image file path: " + (dir / "gone.png") + " doesn't exist!",
                                                 "warning: Image file path: " + (dir / "folder.png") +
                                                     " doesn't exist!"}));
  ASSERT_TRUE(doc.write(dir / "x.glb"));
  EXPECT_TRUE(isValidGltf(dir / "x.glb"));
}

TEST(GltfOutput, FolderInTheWayFailsWithTheReasonAndLeavesNoTrace) {
  ScratchDir dir;
  std::filesystem::create_directory(dir / "taken.glb");
  RecordingReporter log;
  GltfDocument doc(settingsFor(false, &log));
  doc.addIndexAccessor({0, 1, 2});
  EXPECT_FALSE(doc.write(dir / "taken.glb"));
  EXPECT_EQ(log.lines, std::vector<std::string>{"error: Cannot write " + (dir / "taken.glb") + ": Is a directory"});
  EXPECT_EQ(dir.list(), std::vector<std::string>{"taken.glb"});
}

TEST(GltfOutput, FailedWriteKeepsTheFilesThatWereThere) {
  ScratchDir dir;
  writeFile(dir / "tex.png", tinyPng());
  GltfDocument good(settingsFor(false, nullptr));
  good.addNode(good.root(), "good");
  ASSERT_TRUE(good.write(dir / "scene.glb"));
  const std::string before = readFile(dir / "scene.glb");

  // The image vanishes between being added and being embedded.
  RecordingReporter log;
  GltfDocument bad(settingsFor(false, &log));
  bad.addImage(dir / "tex.png", 1);
  std::filesystem::remove(dir / "tex.png");
  EXPECT_FALSE(bad.write(dir / "scene.glb"));
  EXPECT_EQ(log.lines, std::vector<std::string>{"error: Cannot read " + (dir / "tex.png") + ": No such file or directory"});
  EXPECT_EQ(readFile(dir / "scene.glb"), before);

  // ".gltf": the image's copy cannot be placed, so neither file is replaced.
  GltfDocument first(settingsFor(true, nullptr));
  ASSERT_TRUE(first.write(dir / "pair.gltf"));
  const std::string gltfBefore = readFile(dir / "pair.gltf");
  std::filesystem::create_directory(dir / "sub");
  writeFile(dir / "sub/src.png", tinyPng());
  GltfDocument second(settingsFor(true, &log));
  second.addNode(second.root(), "new");
  second.addImage(dir / "sub/src.png", 1);
  std::filesystem::create_directory(dir / "src.png");  // in the way of the copy
  EXPECT_FALSE(second.write(dir / "pair.gltf"));
  EXPECT_EQ(log.lines.back(), "error: Cannot write " + (dir / "src.png") + ": Is a directory");
  EXPECT_EQ(readFile(dir / "pair.gltf"), gltfBefore);
  EXPECT_EQ(dir.list(), (std::vector<std::string>{"pair.bin", "pair.gltf", "scene.glb", "src.png", "sub"}));
}

}  // namespace
