#include <gtest/gtest.h>

#include <sstream>

#include "sdk_impl/sdk_host.h"
#include "services/host_services.h"

namespace vexo {
namespace {

TEST(UserValues, AreTypedByHowTheirTextParses) {
  HostServices services(nullptr);
  const struct {
    const char *key, *text;
    VxResult intResult;
    std::int32_t integer;
    VxResult floatResult;
    double number;
  } cases[] = {
      {"int", "42", VXR_OK, 42, VXR_OK, 42.0},
      {"float", "2.5", VXR_BADARG, 0, VXR_OK, 2.5},
      {"exp", "1e3", VXR_BADARG, 0, VXR_OK, 1000.0},
      {"big", "3000000000", VXR_BADARG, 0, VXR_OK, 3e9},  // too big for 32 bits: a float
      {"text", "12abc", VXR_BADARG, 0, VXR_BADARG, 0.0},
      {"empty", "", VXR_BADARG, 0, VXR_BADARG, 0.0},
  };
  for (const auto& c : cases) services.userValues.set(c.key, c.text);
  SdkHost host(services);
  IVxUserValues& values = *host.UserValues();
  for (const auto& c : cases) {
    std::int32_t i = -1;
    double d = -1.0;
    const char* s = nullptr;
    EXPECT_EQ(values.GetInt(c.key, &i), c.intResult) << c.key;
    EXPECT_EQ(i, VxOk(c.intResult) ? c.integer : -1) << c.key;
    EXPECT_EQ(values.GetFloat(c.key, &d), c.floatResult) << c.key;
    EXPECT_EQ(d, VxOk(c.floatResult) ? c.number : -1.0) << c.key;
    ASSERT_EQ(values.GetString(c.key, &s), VXR_OK);
    EXPECT_STREQ(s, c.text);
  }
  std::int32_t i = 5;
  EXPECT_EQ(values.GetInt("missing", &i), VXR_NOTFOUND);
  EXPECT_EQ(i, 5);
}

TEST(EventLog, PrintsEachEntryAndLineAtOnceWithItsSeverity) {
  std::ostringstream out;
  HostServices services(&out);
  SdkHost host(services);
  IVxLogService& logs = *host.LogService();
  IVxLogSubsystem* io = nullptr;
  EXPECT_EQ(logs.SubsystemLookup("no-such-log", &io), VXR_NOTFOUND);
  ASSERT_EQ(logs.SubsystemLookup("io-status", &io), VXR_OK);

  auto add = [&](VxResult code, const char* text) {
    IVxLogEntry* entry = nullptr;
    ASSERT_EQ(logs.CreateEntry(code, text, &entry), VXR_OK);
    EXPECT_EQ(entry->Code(), code);
    ASSERT_EQ(io->AddEntry(entry), VXR_OK);
  };
  add(VXR_WARNING, "There are 1 warnings and 0 errors reported to event log");
  const std::string printed = out.str();
  EXPECT_EQ(printed, "warning: There are 1 warnings and 0 errors reported to event log\n");  // printed at once
  add(VXR_FAILED, "Failed to export GLTF!");
  add(VXR_NOTFOUND, "not found");
  add(VXR_OK, "fine");
  add(VXR_FALSE, "also fine");
  io->PrintLine("Root item:Cube\n", 0);
  io->PrintLine("glTf v2 :: InitSaver()", 1);
  io->PrintLine("", 0);
  EXPECT_EQ(out.str(), printed +
                           "error: Failed to export GLTF!\n"
                           "error: not found\n"
                           "info: fine\n"
                           "info: also fine\n"
                           "info: Root item:Cube\n"
                           "info: glTf v2 :: InitSaver()\n"
                           "info: \n");
}

TEST(EventLog, EntriesAreAddedOnceAndOnlyFromThisService) {
  HostServices services(nullptr);
  SdkHost host(services);
  IVxLogSubsystem* io = nullptr;
  ASSERT_EQ(host.LogService()->SubsystemLookup("io-status", &io), VXR_OK);
  IVxLogEntry* entry = nullptr;
  ASSERT_EQ(host.LogService()->CreateEntry(VXR_OK, "once", &entry), VXR_OK);
  ASSERT_EQ(io->AddEntry(entry), VXR_OK);
  EXPECT_EQ(io->AddEntry(entry), VXR_BADARG);
  SdkLogEntry stranger(VXR_OK, "stranger");
  EXPECT_EQ(io->AddEntry(&stranger), VXR_BADARG);
  // An entry never added stays with the service and is freed with it.
  ASSERT_EQ(host.LogService()->CreateEntry(VXR_OK, "dropped", &entry), VXR_OK);
  EXPECT_EQ(services.log.records().size(), 1u);
}

TEST(Messages, CommonEntry2020ShowsItsArgumentAndIsNotPrinted) {
  std::ostringstream out;
  HostServices services(&out);
  SdkHost host(services);
  const char* args[] = {"Failed to export GLTF!"};
  EXPECT_EQ(host.MessageService()->Raise(VXR_FAILED, "common", 2020, 1, args), VXR_OK);
  EXPECT_EQ(host.MessageService()->Raise(VXR_FAILED, "common", 2021, 1, args), VXR_NOTFOUND);
  EXPECT_EQ(host.MessageService()->Raise(VXR_FAILED, "other", 2020, 1, args), VXR_NOTFOUND);
  ASSERT_EQ(services.messages.raised().size(), 1u);
  EXPECT_EQ(services.messages.raised()[0].text, "Failed to export GLTF!");
  EXPECT_EQ(services.messages.raised()[0].code, VXR_FAILED);
  EXPECT_EQ(out.str(), "");
  EXPECT_EQ(formatMessage("%2 of %1, 100%% %3.", {"a", "b"}), "b of a, 100% .");
}

}  // namespace
}  // namespace vexo
