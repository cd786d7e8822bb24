// The shared validator check must reject what it is there to catch, and accept
// the allowlisted findings only where the allowlist names them.
#include <gtest/gtest.h>

#include <filesystem>

#include "test_util.h"
#include "validator.h"

namespace {

TEST(ValidatorCheck, RejectsFindingsOutsideTheAllowlist) {
  ScratchDir dir;
  // The code VALUE_NOT_IN_RANGE is allowed for buffer 0's length only, not here.
  GltfDocument view(settingsFor(false, nullptr));
  view.addBufferView(0, 0, 0, 0, 0);
  ASSERT_TRUE(view.write(dir / "view.glb"));
  const auto result = isValidGltf(dir / "view.glb");
  EXPECT_FALSE(result);
  EXPECT_NE(std::string(result.message()).find("VALUE_NOT_IN_RANGE (error) at /bufferViews/0/byteLength"),
            std::string::npos)
      << result.message();

  // A ".gltf" whose ".bin" is missing: the external resource is really read.
  GltfDocument pair(settingsFor(true, nullptr));
  pair.addIndexAccessor({0, 1, 2});
  ASSERT_TRUE(pair.write(dir / "pair.gltf"));
  EXPECT_TRUE(isValidGltf(dir / "pair.gltf"));
  std::filesystem::remove(dir / "pair.bin");
  const auto missing = isValidGltf(dir / "pair.gltf");
  EXPECT_FALSE(missing);
  EXPECT_NE(std::string(missing.message()).find("IO_ERROR"), std::string::npos) << missing.message();

  EXPECT_FALSE(isValidGltf(dir / "nothing.glb"));
}

TEST(ValidatorCheck, AStarInAnAllowedPointerStandsForOneSegment) {
  // The allowlist names "/images/*/bufferView" for UNSATISFIED_DEPENDENCY.
  EXPECT_TRUE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/images/0/bufferView", ""}));
  EXPECT_TRUE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/images/12/bufferView", ""}));
  EXPECT_FALSE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/images/0/uri", ""}));
  EXPECT_FALSE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/images/bufferView", ""}));
  EXPECT_FALSE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/images/0/bufferView/1", ""}));
  EXPECT_FALSE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "/textures/0/bufferView", ""}));
  EXPECT_FALSE(isAllowedFinding({"UNSATISFIED_DEPENDENCY", 0, "", ""}));
  // Without a star the pointer must match whole.
  EXPECT_FALSE(isAllowedFinding({"VALUE_NOT_IN_RANGE", 0, "/buffers/1/byteLength", ""}));
}

}  // namespace
