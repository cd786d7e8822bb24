// The saver's event-log writer and the export options, against a fake host.
#include <gtest/gtest.h>

#include <string>

#include "fake_host.h"
#include "host/user_values.h"
#include "host/vx_host.h"
#include "plugin/export_options.h"
#include "plugin/gltf_log_msg.h"

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

  ASSERT_EQ(host.log.size(), 7u);
  EXPECT_EQ(host.log[0].level, "info");
  EXPECT_EQ(host.log[0].text, "Root item:A");
  EXPECT_EQ(host.log[1].level, "trace");
  EXPECT_EQ(host.log[2].level, "warning");
  EXPECT_EQ(host.log[3].level, "error");
  EXPECT_EQ(host.log[5].level, "warning");
  EXPECT_EQ(host.log[5].text, "There are 1 warnings and 2 errors reported to event log");
  EXPECT_EQ(host.log[6].level, "error");
  // Reported messages reach the user through "common" 2020 and are not counted.
  ASSERT_EQ(host.messages.size(), 2u);
  EXPECT_EQ(host.messages[1], "common/2020: Failed to export GLTF!");
  EXPECT_EQ(log.warnings(), 1u);
  EXPECT_EQ(log.errors(), 2u);
  log.resetCounters();
  EXPECT_EQ(log.warnings() + log.errors(), 0u);
}

TEST_F(GltfLogMsgTest, LongMessagesAreCutAndPercentSignsSurviveTheReporter) {
  GltfLogMsg log;
  const std::string longName(3000, 'x');
  log.info("Root item:%s", longName.c_str());
  ASSERT_EQ(host.log.size(), 1u);
  EXPECT_EQ(host.log[0].text.size(), 1023u);
  EXPECT_EQ(host.log[0].text.substr(0, 10), "Root item:");

  // The document hands over finished texts; a '%' in them is not a format.
  log.reporter().warning("Image file path: /tmp/100%s.png doesn't exist!");
  EXPECT_EQ(host.log[1].text, "Image file path: /tmp/100%s.png doesn't exist!");
  EXPECT_EQ(log.warnings(), 1u);
}

TEST_F(GltfLogMsgTest, FallsBackToAPlainLineWhenNoEntryCanBeMade) {
  host.refuseEntries = true;
  GltfLogMsg log;
  log.error("Failed to set item");
  ASSERT_EQ(host.log.size(), 1u);
  EXPECT_EQ(host.log[0].level, "info");
  EXPECT_EQ(host.log[0].text, "Failed to set item");
  EXPECT_EQ(log.errors(), 1u);
}

TEST_F(ExportOptionsTest, DefaultsWhenNoUserValueExists) {
  const ExportOptions options = readExportOptions(CVxUserValues::getInt);
  EXPECT_EQ(options.exportType, 1);
  EXPECT_EQ(options.geometry, 1);
  EXPECT_EQ(options.materials, 1);
  EXPECT_EQ(options.cameras, 1);
  EXPECT_EQ(options.animation, 1);
  EXPECT_EQ(options.morphMaps, 1);
  EXPECT_EQ(options.skinnedMeshInWS, 1);
  EXPECT_EQ(options.tangentsBitangents, 0);
  EXPECT_EQ(options.indicesExport, 0);
  EXPECT_EQ(options.sampleAnimFpsMultiplier, 0);
  EXPECT_EQ(options.exportActionType, 0);
}

TEST_F(ExportOptionsTest, ReadsEveryKeyOnceInOrder) {
  host.userValues["sceneio.gltf.save.exportType"] = "0";
  host.userValues["sceneio.gltf.save.morphMaps"] = "2";
  host.userValues["sceneio.gltf.save.indicesExport"] = "1";
  const ExportOptions options = readExportOptions(CVxUserValues::getInt);
  EXPECT_EQ(options.exportType, 0);
  EXPECT_EQ(options.morphMaps, 2);
  EXPECT_EQ(options.indicesExport, 1);
  EXPECT_EQ(options.geometry, 1);

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
