// Running out of memory ends a save with status 1 and one clear message:
// never a crash, never a damaged destination, never a temporary file left.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "limited_run.h"
#include "validator.h"
#include "vexo_runner.h"

#if defined(__SANITIZE_ADDRESS__)
#define GLTFIO_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GLTFIO_ASAN 1
#endif
#endif

namespace {

const std::string kWholeScene = "sceneio.gltf.save.exportType=0";
const std::string kPrevious = "previous";

bool startsWith(const std::string& text, const std::string& prefix) { return text.rfind(prefix, 0) == 0; }

// What every failed run must show: status 1, not by a signal, a last line
// from vexo, and the destination either untouched or the whole new file.
void expectCleanOutcome(const VexoRun& run, bool signalled, const TempDir& dir, const std::string& dest,
                        const std::string& expected) {
  EXPECT_FALSE(signalled) << "signal " << run.exitCode - 128 << "\n" << run.errText();
  EXPECT_TRUE(run.exitCode == 0 || run.exitCode == 1) << run.exitCode << "\n" << run.errText();
  const std::string now = readFile(dir.file(dest));
  if (run.exitCode == 0) {
    EXPECT_EQ(now, expected);
  } else {
    ASSERT_FALSE(run.errLines.empty());
    EXPECT_TRUE(startsWith(run.errLines.back(), "vexo: ")) << run.errText();
    EXPECT_TRUE(now == kPrevious || now == expected) << "destination damaged";
    // A failure inside the save is the saver's own reported error.
    if (run.errLines.back().find("failed with result 0x80000000") != std::string::npos) {
      EXPECT_TRUE(run.printed("error: Failed to export GLTF!")) << run.errText();
    }
  }
  EXPECT_TRUE(temporaryFiles(dir.path()).empty());
}

TEST(ResourceFailure, EveryFailedAllocationEndsCleanly) {
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(6));
  const std::string dest = "out.glb";
  const VexoRun normal = runProgram(
      FAILING_ALLOC_VEXO_BIN, {{"save", scene, dir.file(dest), "--set", kWholeScene}, {},
                               {{"GLTFIO_ALLOCATION_COUNT", dir.file("count")}}});
  ASSERT_EQ(normal.exitCode, 0) << normal.errText();
  const std::string expected = readFile(dir.file(dest));
  ASSERT_TRUE(isValidGltf(dir.file(dest)));
  const long total = std::atol(readFile(dir.file("count")).c_str());
  ASSERT_GT(total, 100);

  // Every early allocation (reading arguments, the scene, loading the
  // plug-in), then a spread over the whole run.
  std::vector<long> points;
  for (long n = 1; n <= 40; ++n) points.push_back(n);
  for (int i = 0; i < 80; ++i) points.push_back(41 + (total - 41) * i / 80);
  int inSave = 0;
  for (const long n : points) {
    SCOPED_TRACE("allocation " + std::to_string(n));
    std::ofstream(dir.file(dest), std::ios::trunc) << kPrevious;
    bool signalled = false;
    const VexoRun run = runProgram(FAILING_ALLOC_VEXO_BIN,
                                   {{"save", scene, dir.file(dest), "--set", kWholeScene}, {},
                                    {{"GLTFIO_FAIL_ALLOCATION", std::to_string(n)}}},
                                   &signalled);
    expectCleanOutcome(run, signalled, dir, dest, expected);
    if (run.printed("error: Failed to export GLTF!")) ++inSave;
  }
  // The spread must have reached the saver itself, not only vexo.
  EXPECT_GT(inSave, 10);
}

// Under an address-space limit too small for the save but large enough to
// read the scene and load the plug-in, the save fails as the saver's error.
TEST(ResourceFailure, LowAddressSpaceLimitFailsTheSaveCleanly) {
#ifdef GLTFIO_ASAN
  GTEST_SKIP() << "AddressSanitizer cannot run under a low address-space limit";
#else
  TempDir dir;
  const std::string scene = dir.write("grid.json", gridScene(300));
  const std::string dest = "out.glb";
  const std::vector<std::string> save = {"save", scene, dir.file(dest), "--set", kWholeScene,
                                         "--set", "sceneio.gltf.save.indicesExport=1"};
  ASSERT_EQ(runVexo(save).exitCode, 0);
  const std::string expected = readFile(dir.file(dest));
  const auto limited = [&](rlim_t kib, bool verifyOnly, bool* signalled) {
    std::vector<std::string> args = save;
    if (verifyOnly) args.push_back("--verify-only");
    return runProgram(VEXO_BIN, {args, {{RLIMIT_AS, kib << 10}}, {}}, signalled);
  };
  // The smallest limit (in KiB) under which a run gets through.
  const auto smallestLimit = [&](bool verifyOnly) {
    rlim_t low = 1, high = 1 << 20;
    while (high - low > 1) {
      const rlim_t middle = (low + high) / 2;
      (limited(middle, verifyOnly, nullptr).exitCode == 0 ? high : low) = middle;
    }
    return high;
  };
  const rlim_t verifyLimit = smallestLimit(true);
  const rlim_t saveLimit = smallestLimit(false);
  ASSERT_LT(verifyLimit, saveLimit) << "the export needs memory of its own beyond reading the scene";

  // Limits between the two let the scene be read and verified but not
  // exported: the saver must report it and leave the old file in place.
  constexpr rlim_t kSteps = 8;
  for (rlim_t step = 0; step < kSteps; ++step) {
    const rlim_t kib = verifyLimit + (saveLimit - verifyLimit) * step / kSteps;
    SCOPED_TRACE(std::to_string(kib) + " KiB");
    std::ofstream(dir.file(dest), std::ios::trunc) << kPrevious;
    bool signalled = false;
    const VexoRun run = limited(kib, false, &signalled);
    expectCleanOutcome(run, signalled, dir, dest, expected);
    if (run.exitCode == 0) continue;
    EXPECT_TRUE(run.printed("error: Failed to export GLTF!")) << run.errText();
    EXPECT_TRUE(run.printed("vexo: saving \"" + dir.file(dest) + "\" failed with result 0x80000000")) << run.errText();
  }
#endif
}

}  // namespace
