#include <gtest/gtest.h>

#include <sstream>

#include "sdk_impl/sdk_host.h"
#include "services/host_services.h"

namespace vexo {
namespace {

TEST(UserValues, AreTypedByHowTheirTextParses) {
  HostServices services(nullptr);
  services.userValues.set("int", "42");
  services.userValues.set("negative", "-7");
  services.userValues.set("float", "2.5");
  services.userValues.set("exp", "1e3");
  services.userValues.set("big", "3000000000");
  services.userValues.set("text", "12abc");
  services.userValues.set("empty", "");
  SdkHost host(services);
  IVxUserValues& values = *host.UserValues();

  std::int32_t i = -1;
  double d = -1.0;
  const char* s = nullptr;
  ASSERT_EQ(values.GetInt("int", &i), VXR_OK);
  EXPECT_EQ(i, 42);
  ASSERT_EQ(values.GetInt("negative", &i), VXR_OK);
  EXPECT_EQ(i, -7);
  ASSERT_EQ(values.GetFloat("int", &d), VXR_OK);
  EXPECT_EQ(d, 42.0);
  ASSERT_EQ(values.GetFloat("exp", &d), VXR_OK);
  EXPECT_EQ(d, 1000.0);
  ASSERT_EQ(values.GetFloat("big", &d), VXR_OK);  // too big for 32 bits: a float
  EXPECT_EQ(d, 3e9);

  i = 5;
  EXPECT_EQ(values.GetInt("float", &i), VXR_BADARG);
  EXPECT_EQ(values.GetInt("big", &i), VXR_BADARG);
  EXPECT_EQ(values.GetInt("text", &i), VXR_BADARG);
  EXPECT_EQ(values.GetFloat("text", &d), VXR_BADARG);
  EXPECT_EQ(values.GetInt("empty", &i), VXR_BADARG);
  EXPECT_EQ(values.GetInt("missing", &i), VXR_NOTFOUND);
  EXPECT_EQ(i, 5);

  ASSERT_EQ(values.GetString("text", &s), VXR_OK);
  EXPECT_STREQ(s, "12abc");
  ASSERT_EQ(values.GetString("float", &s), VXR_OK);
  EXPECT_STREQ(s, "2.5");
}

TEST(EventLog, PrintsEachEntryAndLineAtOnceWithItsSeverity) {
  std::ostringstream out;
  HostServices services(&out);
  SdkHost host(services);
  IVxLogService& logs = *host.LogService();
  IVxLogSubsystem* io = nullptr;
  ASSERT_EQ(logs.SubsystemLookup("io-status", &io), VXR_OK);
  EXPECT_STREQ(io->Name(), "io-status");
  IVxLogSubsystem* again = nullptr;
  ASSERT_EQ(logs.SubsystemLookup("io-status", &again), VXR_OK);
  EXPECT_EQ(again, io);
  EXPECT_EQ(logs.SubsystemLookup("no-such-log", &again), VXR_NOTFOUND);

  auto add = [&](VxResult code, const char* text) {
    IVxLogEntry* entry = nullptr;
    ASSERT_EQ(logs.CreateEntry(code, text, &entry), VXR_OK);
    EXPECT_EQ(entry->Code(), code);
    ASSERT_EQ(io->AddEntry(entry), VXR_OK);
  };
  add(VXR_WARNING, "There are 1 warnings and 0 errors reported to event log");
  std::string printed = out.str();
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

  const auto& records = services.log.records();
  ASSERT_EQ(records.size(), 8u);
  EXPECT_EQ(records[1].severity, Severity::Error);
  EXPECT_TRUE(records[1].entry);
  EXPECT_EQ(records[0].subsystem, "io-status");
  EXPECT_FALSE(records[5].entry);
  EXPECT_EQ(records[6].output, 1);
  EXPECT_EQ(records[5].attachedTo, 4u);  // lines follow the last entry...
  ASSERT_EQ(io->ResetCurrent(), VXR_OK);
  io->PrintLine("detached", 0);
  EXPECT_FALSE(services.log.records().back().attachedTo.has_value());  // ...until the log is reset
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

class NamedFactory final : public IVxFactory {
 public:
  explicit NamedFactory(const char* name) : name_(name) {}
  const char* ServerName() const override { return name_; }
  unsigned InterfaceCount() const override { return 0; }
  const char* InterfaceName(unsigned) const override { return nullptr; }
  const IVxStaticDesc* StaticDesc() const override { return nullptr; }
  IVxSaver* SpawnSaver() override { return nullptr; }

 private:
  const char* name_;
};

TEST(SdkHost, RegistersServersByUniqueName) {
  HostServices services(nullptr);
  SdkHost host(services);
  NamedFactory a("gltf.bin"), b("gltf.gltf"), duplicate("gltf.bin"), unnamed("");
  EXPECT_EQ(host.RegisterServer(&a), VXR_OK);
  EXPECT_EQ(host.RegisterServer(&b), VXR_OK);
  EXPECT_TRUE(VxFailed(host.RegisterServer(&duplicate)));
  EXPECT_TRUE(VxFailed(host.RegisterServer(&unnamed)));
  EXPECT_TRUE(VxFailed(host.RegisterServer(nullptr)));
  EXPECT_EQ(host.findServer("gltf.bin"), &a);
  EXPECT_EQ(host.serverNames(), (std::vector<std::string>{"gltf.bin", "gltf.gltf"}));
  host.unregisterServer("gltf.bin");
  EXPECT_EQ(host.findServer("gltf.bin"), nullptr);
  EXPECT_EQ(host.findServer("gltf.gltf"), &b);
}

}  // namespace
}  // namespace vexo
