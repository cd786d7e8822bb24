// What was at the destination survives every save: links are written
// through, devices and FIFOs are written into and never replaced, a file-size
// limit fails the save cleanly, and saves at once leave one whole result.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include <rapidjson/document.h>

#include "limited_run.h"
#include "validator.h"
#include "vexo_runner.h"

namespace {

namespace fs = std::filesystem;

const std::string kWholeScene = "sceneio.gltf.save.exportType=0";

bool isLink(const std::string& path) { return fs::is_symlink(fs::symlink_status(path)); }

TEST(SaveDestination, SymbolicLinksAreWrittenThroughAndStay) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(2));
  fs::create_directory(dir.file("real"));
  std::ofstream(dir.file("real/model.glb")) << "old";
  // A chain: out.glb -> hop.glb -> real/model.glb, the last one relative.
  fs::create_symlink("real/model.glb", dir.file("hop.glb"));
  fs::create_symlink(dir.file("hop.glb"), dir.file("out.glb"));

  const VexoRun run = runVexo({"save", scene, dir.file("out.glb"), "--set", kWholeScene});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_TRUE(isLink(dir.file("out.glb")));
  EXPECT_TRUE(isLink(dir.file("hop.glb")));
  EXPECT_EQ(readFile(dir.file("real/model.glb")).substr(0, 4), "glTF");
  EXPECT_TRUE(isValidGltf(dir.file("real/model.glb")));
  EXPECT_TRUE(temporaryFiles(dir.path()).empty());
  EXPECT_TRUE(temporaryFiles(dir.file("real")).empty());

  // The ".gltf" and its ".bin" each go through their own link; a dangling
  // link gets its target created.
  fs::create_symlink("real/model.gltf", dir.file("pair.gltf"));
  fs::create_symlink("real/data.bin", dir.file("pair.bin"));
  const VexoRun pair = runVexo({"save", scene, dir.file("pair.gltf"), "--set", kWholeScene});
  ASSERT_EQ(pair.exitCode, 0) << pair.errText();
  EXPECT_TRUE(isLink(dir.file("pair.gltf")));
  EXPECT_TRUE(isLink(dir.file("pair.bin")));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(dir.file("real/model.gltf"))));
  EXPECT_GT(fs::file_size(dir.file("real/data.bin")), 0u);
  EXPECT_TRUE(isValidGltf(dir.file("pair.gltf")));
}

TEST(SaveDestination, LinkLoopIsAnErrorAndChangesNothing) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(1));
  fs::create_symlink(dir.file("b.glb"), dir.file("a.glb"));
  fs::create_symlink(dir.file("a.glb"), dir.file("b.glb"));
  const VexoRun run = runVexo({"save", scene, dir.file("a.glb")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_TRUE(run.printed("error: Cannot write " + dir.file("a.glb") + ": Too many levels of symbolic links"))
      << run.errText();
  EXPECT_TRUE(isLink(dir.file("a.glb")));
  EXPECT_TRUE(temporaryFiles(dir.path()).empty());
}

TEST(SaveDestination, FifoIsWrittenIntoAndStaysAFifo) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(3));
  const std::string fifo = dir.file("pipe.glb");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);

  // Nobody reading: refused at once rather than waited on.
  const VexoRun alone = runVexo({"save", scene, fifo, "--set", kWholeScene});
  EXPECT_EQ(alone.exitCode, 1);
  EXPECT_TRUE(alone.printed("error: Cannot write " + fifo + ": no process reads from the FIFO")) << alone.errText();

  std::string received;
  std::thread reader([&] {
    std::ifstream in(fifo, std::ios::binary);
    received.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  });
  // The reader may not have opened the FIFO yet: try until it has.
  VexoRun run;
  for (int attempt = 0; attempt < 200; ++attempt) {
    run = runVexo({"save", scene, fifo, "--set", kWholeScene});
    if (run.exitCode == 0) break;
    ::usleep(10000);
  }
  reader.join();
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_TRUE(fs::is_fifo(fifo));
  EXPECT_TRUE(temporaryFiles(dir.path()).empty());
  const std::string copy = dir.write("received.glb", received);
  EXPECT_TRUE(isValidGltf(copy));
}

TEST(SaveDestination, CharacterDeviceIsWrittenIntoAndStaysADevice) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(2));
  // A private node of the null device, so that a fault cannot harm the real one.
  const std::string device = dir.file("null.glb");
  if (::mknod(device.c_str(), S_IFCHR | 0666, makedev(1, 3)) != 0) GTEST_SKIP() << "cannot create a device node";
  const VexoRun run = runVexo({"save", scene, device, "--set", kWholeScene});
  EXPECT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_TRUE(fs::is_character_file(device));
  EXPECT_TRUE(temporaryFiles(dir.path()).empty());
}

TEST(SaveDestination, FileSizeLimitFailsTheSaveAndKeepsThePreviousFiles) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(40));
  for (const std::string dest : {"out.glb", "out.gltf"}) {
    SCOPED_TRACE(dest);
    std::ofstream(dir.file(dest)) << "previous";
    std::ofstream(dir.file("out.bin")) << "previous bin";
    bool signalled = false;
    const VexoRun run = runProgram(
        VEXO_BIN, {{"save", scene, dir.file(dest), "--set", kWholeScene}, {{RLIMIT_FSIZE, 16384}}, {}}, &signalled);
    EXPECT_FALSE(signalled) << run.exitCode;
    EXPECT_EQ(run.exitCode, 1) << run.errText();
    EXPECT_TRUE(run.printed("error: Failed to export GLTF!")) << run.errText();
    EXPECT_NE(run.errText().find(": File too large"), std::string::npos) << run.errText();
    EXPECT_EQ(readFile(dir.file(dest)), "previous");
    EXPECT_EQ(readFile(dir.file("out.bin")), "previous bin");
    EXPECT_TRUE(temporaryFiles(dir.path()).empty()) << temporaryFiles(dir.path()).front();
  }
}

// The ".bin" length the ".gltf" declares; -1 when it cannot be read.
long long declaredBufferLength(const std::string& gltfPath) {
  rapidjson::Document json;
  const std::string text = readFile(gltfPath);
  if (json.Parse(text.c_str()).HasParseError() || !json.IsObject() || !json.HasMember("buffers")) return -1;
  return json["buffers"][0]["byteLength"].GetInt64();
}

TEST(SaveDestination, ConcurrentSavesLeaveOneWholePair) {
  TempDir dir;
  // Two scenes whose ".bin" differ in length, so a mixed pair shows.
  const std::string small = dir.write("small.json", gridScene(4));
  const std::string large = dir.write("large.json", gridScene(12));
  const std::string dest = dir.file("out.gltf");
  TempDir capture;
  constexpr int kRounds = 40;
  constexpr int kSavers = 6;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<pid_t> pids;
    for (int i = 0; i < kSavers; ++i) {
      pids.push_back(startProgram(VEXO_BIN, {{"save", i % 2 ? large : small, dest, "--set", kWholeScene}, {}, {}},
                                  capture, i));
    }
    for (int i = 0; i < kSavers; ++i) {
      const VexoRun run = finishProgram(pids[static_cast<std::size_t>(i)], capture, i);
      ASSERT_EQ(run.exitCode, 0) << run.errText();
    }
    ASSERT_EQ(declaredBufferLength(dest), static_cast<long long>(fs::file_size(dir.file("out.bin"))))
        << "round " << round;
  }
  EXPECT_TRUE(isValidGltf(dest));
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"large.json", "out.bin", "out.gltf", "small.json"}));
}

}  // namespace
