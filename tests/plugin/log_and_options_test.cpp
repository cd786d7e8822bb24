// The saver's event-log writer and the export options, against a fake host.
#include <gtest/gtest.h>

#include <string>

#include "fake_host.h"
#include "host/user_values.h"
#include "host/vx_host.h"
#include "core/export_options.h"
#include "core/gltf_log_msg.h"

namespace {

class WithFakeHost : public ::testing::Test {
 protected:
  void SetUp() override { CVxHost::set(&host); }
  void TearDown() override { CVxHost::set(nullptr); }
  FakeHost host;
};

using GltfLogMsgTest = WithFakeHost;
using ExportOptionsTest = WithFakeHost;

TEST_F(GltfLogMsgTest, LevelsCountersAndReportedMessages) {
  GltfLogMsg log;
  log.info("Root item:%s", "A");
  log.trace("glTf v2 :: InitSaver()");
  log.warning("w%d", 1);
  log.error("e%d", 2);
  log.error("e%d", 3);
  log.reportWarning("There are %d warnings and %d errors reported to event log", 1, 2);
  log.reportError("Failed to export GLTF!");

  EXPECT_EQ(host.log, (std::vector<std::string>{"info: Root item:A", "trace: glTf v2 :: InitSaver()", "warning: w1",
                                                "error: e2", "error: e3",
                                                "warning: There are 1 warnings and 2 errors reported to event log",
                                                "error: Failed to export GLTF!"}));
  // Reported messages reach the user through "common" 2020 and are not counted.
  EXPECT_EQ(host.messages, (std::vector<std::string>{
                               "common/2020: There are 1 warnings and 2 errors reported to event log",
                               "common/2020: Failed to export GLTF!"}));
  EXPECT_EQ(log.warnings(), 1u);
  EXPECT_EQ(log.errors(), 2u);
  log.resetCounters();
  EXPECT_EQ(log.warnings() + log.errors(), 0u);
}

TEST_F(GltfLogMsgTest, LongTextsAreCutAndFinishedTextsPassVerbatim) {
  GltfLogMsg log;
  const std::string longName(3000, 'x');
  log.info("Root item:%s", longName.c_str());
  ASSERT_EQ(host.log.size(), 1u);
  EXPECT_EQ(host.log[0], "info: Root item:" + std::string(1023 - 10, 'x'));

  // The document hands over finished texts; a '%' in them is not a format.
  log.reporter().warning("Image file path: /tmp/100%s.png doesn't exist!");
  EXPECT_EQ(host.log.back(), "warning: Image file path: /tmp/100%s.png doesn't exist!");
  EXPECT_EQ(log.warnings(), 1u);

  // When the host makes no entry, an error still shows as a plain line and counts.
  host.refuseEntries = true;
  log.error("Failed to set item");
  EXPECT_EQ(host.log.back(), "info: Failed to set item");
  EXPECT_EQ(log.errors(), 1u);
}

TEST_F(ExportOptionsTest, ReadsEveryKeyOnceInOrderWithItsDefault) {
  host.userValues["sceneio.gltf.save.exportType"] = "0";
  host.userValues["sceneio.gltf.save.morphMaps"] = "2";
  host.userValues["sceneio.gltf.save.indicesExport"] = "1";
  const ExportOptions options = readExportOptions(CVxUserValues::getInt);
  EXPECT_EQ(options.exportType, 0);
  EXPECT_EQ(options.morphMaps, 2);
  EXPECT_EQ(options.indicesExport, 1);
  EXPECT_EQ(options.geometry, 1);
  EXPECT_EQ(options.tangentsBitangents, 0);

  const std::vector<std::string> expected = {
      "sceneio.gltf.save.exportType",         "sceneio.gltf.save.geometry",
      "sceneio.gltf.save.materials",          "sceneio.gltf.save.cameras",
      "sceneio.gltf.save.animation",          "sceneio.gltf.save.morphMaps",
      "sceneio.gltf.save.skinnedMeshInWS",    "sceneio.gltf.save.tangentsBitangents",
      "sceneio.gltf.save.indicesExport",      "sceneio.gltf.save.sampleAnimFpsMultiplier",
      "sceneio.gltf.save.exportActionType"};
  EXPECT_EQ(host.userValueReads, expected);
}

}  // namespace
