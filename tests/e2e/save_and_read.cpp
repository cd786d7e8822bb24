#include "save_and_read.h"

#include <gtest/gtest.h>

#include "validator.h"

SavedScene saveAndRead(const TempDir& dir, const std::string& scene, const std::string& destination,
                       const std::vector<std::string>& extraArgs) {
  std::vector<std::string> args = {"save", dir.write("scene.json", scene), dir.file(destination)};
  args.insert(args.end(), extraArgs.begin(), extraArgs.end());
  SavedScene saved;
  saved.run = runVexo(args);
  EXPECT_EQ(saved.run.exitCode, 0) << saved.run.errText();
  EXPECT_TRUE(isValidGltf(dir.file(destination)));
  std::string problem;
  EXPECT_TRUE(readGltf(dir.file(destination), saved.gltf, problem)) << problem;
  saved.bytes = readFile(dir.file(destination));
  return saved;
}
