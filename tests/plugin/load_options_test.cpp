// The module's load-options servers as the host sees them: the command's
// attributes, the record the configuration I/O writes, the visitor that reads
// it back, and the option set shared by every command.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "fake_host.h"

namespace {

struct Entry {
  std::string name;
  enum Kind { Boolean, Integer, Float, Text } kind;
  double number = 0;
  std::string text;
};

// Entries as the host would hand them over, recording what readers reject.
class Entries : public IVxPersistEntries {
 public:
  explicit Entries(std::vector<Entry> entries) : entries_(std::move(entries)) {}
  std::vector<unsigned> rejected;

  unsigned EntryCount() const override { return static_cast<unsigned>(entries_.size()); }
  const char* EntryName(unsigned i) const override { return entries_[i].name.c_str(); }
  VxResult EntryInt(unsigned i, std::int32_t* value) const override {
    if (entries_[i].kind != Entry::Boolean && entries_[i].kind != Entry::Integer) return VXR_BADARG;
    *value = static_cast<std::int32_t>(entries_[i].number);
    return VXR_OK;
  }
  VxResult EntryFloat(unsigned i, double* value) const override {
    if (entries_[i].kind != Entry::Integer && entries_[i].kind != Entry::Float) return VXR_BADARG;
    *value = entries_[i].number;
    return VXR_OK;
  }
  VxResult EntryText(unsigned i, const char** text) const override {
    if (entries_[i].kind != Entry::Text) return VXR_BADARG;
    *text = entries_[i].text.c_str();
    return VXR_OK;
  }
  void Reject(unsigned i, const char*) override { rejected.push_back(i); }

 private:
  std::vector<Entry> entries_;
};

// Collects what the writers write, in order.
class Sink : public IVxPersistSink {
 public:
  std::vector<Entry> written;
  VxResult WriteBoolean(const char* name, bool value) override { return add({name, Entry::Boolean, value ? 1.0 : 0.0, ""}); }
  VxResult WriteInt(const char* name, std::int32_t value) override { return add({name, Entry::Integer, double(value), ""}); }
  VxResult WriteFloat(const char* name, double value) override { return add({name, Entry::Float, value, ""}); }
  VxResult WriteText(const char* name, const char* text) override { return add({name, Entry::Text, 0, text}); }

 private:
  VxResult add(Entry entry) {
    written.push_back(std::move(entry));
    return VXR_OK;
  }
};

struct Attr {
  const char* name;
  VxAttrType type;
};

const Attr kAttributes[] = {
    {"mergeWithExistingItems", VXATTR_BOOLEAN}, {"loadGeometry", VXATTR_BOOLEAN},
    {"loadNormals", VXATTR_BOOLEAN},           {"loadMeshSmoothing", VXATTR_BOOLEAN},
    {"loadBlendShapes", VXATTR_BOOLEAN},       {"loadPolygonParts", VXATTR_BOOLEAN},
    {"loadSelectionSets", VXATTR_BOOLEAN},     {"loadMaterials", VXATTR_BOOLEAN},
    {"invertMatTranAmt", VXATTR_BOOLEAN},      {"useMatTranColAsTranAmt", VXATTR_BOOLEAN},
    {"changeTextureEffect", VXATTR_BOOLEAN},   {"loadCameras", VXATTR_BOOLEAN},
    {"loadLights", VXATTR_BOOLEAN},            {"loadAnimation", VXATTR_BOOLEAN},
    {"loadSampleAnimation", VXATTR_BOOLEAN},   {"loadSampleAnimationRate", VXATTR_INTEGER},
    {"globalScalingFactor", VXATTR_FLOAT},     {"importUnits", VXATTR_INTEGER},
};

const char* const kRecordOrder[] = {
    "mergeWithExistingItems", "loadGeometry",       "loadMaterials",        "loadCameras",
    "loadLights",             "loadMeshSmoothing",  "loadBlendShapes",      "loadPolygonParts",
    "loadSelectionSets",      "loadAnimation",      "loadSampleAnimation",  "loadSampleAnimationRate",
    "loadNormals",            "invertMatTranAmt",   "useMatTranColAsTranAmt", "changeTextureEffect",
    "globalScalingFactor",    "importUnits"};

constexpr unsigned kRate = 15, kScale = 16, kUnits = 17;

class LoadOptions : public ::testing::Test {
 protected:
  void SetUp() override {
    library_ = dlopen(GLTFIO_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library_, nullptr) << dlerror();
    auto create = reinterpret_cast<VxModuleCreateFn>(dlsym(library_, VX_MODULE_ENTRY_NAME));
    ASSERT_NE(create, nullptr);
    module_ = create(&host);
    ASSERT_NE(module_, nullptr);
  }
  void TearDown() override {
    for (IVxCommandServer* command : commands_) command->Release();
    if (io_) io_->Release();
    if (visitor_) visitor_->Release();
    if (module_) module_->Release();
    if (library_) dlclose(library_);
  }

  IVxFactory* factory(const std::string& name) {
    for (IVxFactory* f : host.servers)
      if (f->ServerName() == name) return f;
    return nullptr;
  }
  IVxCommandServer* command() {
    commands_.push_back(factory("gltf.loadOptions")->SpawnCommand());
    return commands_.back();
  }
  IVxConfigIO* io() { return io_ ? io_ : io_ = factory("loaderOptions.gltf")->SpawnConfigIO(); }
  IVxPersistVisitor* visitor() {
    return visitor_ ? visitor_ : visitor_ = factory("loaderOptions.gltf.visitor")->SpawnPersistVisitor();
  }

  // Values unlike any starting value, different from one attribute to the next.
  static void setDistinctValues(IVxCommandServer& command) {
    for (unsigned i = 0; i < kRate; ++i) ASSERT_EQ(command.SetInt(i, (i * 7 + 3) % 2), VXR_OK);
    ASSERT_EQ(command.SetInt(kRate, 1), VXR_OK);
    ASSERT_EQ(command.SetFloat(kScale, 0.125), VXR_OK);
    ASSERT_EQ(command.SetInt(kUnits, 7), VXR_OK);
  }
  static std::vector<double> values(const IVxAttributes& attrs) {
    std::vector<double> out(attrs.AttrCount());
    for (unsigned i = 0; i < attrs.AttrCount(); ++i) EXPECT_EQ(attrs.GetFloat(i, &out[i]), VXR_OK);
    return out;
  }

  FakeHost host;

 private:
  void* library_ = nullptr;
  IVxModule* module_ = nullptr;
  std::vector<IVxCommandServer*> commands_;
  IVxConfigIO* io_ = nullptr;
  IVxPersistVisitor* visitor_ = nullptr;
};

std::vector<std::pair<int, std::string>> choices(const VxPopChoice* table) {
  std::vector<std::pair<int, std::string>> out;
  for (; table && table->value != -1; ++table) out.emplace_back(table->value, table->label);
  return out;
}

TEST_F(LoadOptions, AttributesInOrderWithTypesAndPopUpChoices) {
  IVxCommandServer* cmd = command();
  ASSERT_NE(cmd, nullptr);
  ASSERT_EQ(cmd->AttrCount(), std::size(kAttributes));
  for (unsigned i = 0; i < std::size(kAttributes); ++i) {
    SCOPED_TRACE(kAttributes[i].name);
    EXPECT_STREQ(cmd->AttrName(i), kAttributes[i].name);
    VxAttrType type{};
    ASSERT_EQ(cmd->AttrType(i, &type), VXR_OK);
    EXPECT_EQ(type, kAttributes[i].type);
    unsigned found = 99;
    EXPECT_EQ(cmd->AttrLookup(kAttributes[i].name, &found), VXR_OK);
    EXPECT_EQ(found, i);
    const bool popUp = i == kRate || i == kUnits;
    EXPECT_EQ(cmd->AttrHintStyle(i) ? std::string(cmd->AttrHintStyle(i)) : "", popUp ? "iPopChoice" : "");
    EXPECT_EQ(cmd->AttrPopChoices(i) != nullptr, popUp);
  }
  using Choices = std::vector<std::pair<int, std::string>>;
  EXPECT_EQ(choices(cmd->AttrPopChoices(kRate)), (Choices{{0, "1x FPS"}, {1, "2x FPS"}}));
  EXPECT_EQ(choices(cmd->AttrPopChoices(kUnits)),
            (Choices{{0, "Use FBX file units"}, {1, "Millimeters [mm]"}, {2, "Decimeters [dm]"},
                     {3, "Centimeters [cm]"}, {4, "Meters [m]"}, {5, "Kilometers [km]"}, {6, "Inches"},
                     {7, "Feet"}, {8, "Yards"}, {9, "Miles"}}));
  VxAttrType type{};
  EXPECT_EQ(cmd->AttrType(18, &type), VXR_OUTOFBOUNDS);
  EXPECT_EQ(cmd->AttrName(18), nullptr);
  unsigned index = 0;
  EXPECT_EQ(cmd->AttrLookup("loadgeometry", &index), VXR_NOTFOUND);
}

TEST_F(LoadOptions, AttributesRefuseValuesTheirTypeCannotTake) {
  IVxCommandServer* cmd = command();
  const std::vector<double> before = values(*cmd);
  EXPECT_EQ(cmd->SetInt(1, 2), VXR_BADARG);         // a boolean is 0 or 1
  EXPECT_EQ(cmd->SetInt(kUnits, 10), VXR_BADARG);   // not in the table
  EXPECT_EQ(cmd->SetInt(kUnits, -1), VXR_BADARG);   // the end marker is no choice
  EXPECT_EQ(cmd->SetInt(kRate, 2), VXR_BADARG);
  EXPECT_EQ(cmd->SetFloat(kScale, std::nan("")), VXR_BADARG);
  EXPECT_EQ(cmd->SetFloat(kScale, std::numeric_limits<double>::infinity()), VXR_BADARG);
  EXPECT_EQ(cmd->SetFloat(1, 1.0), VXR_BADARG);
  EXPECT_EQ(cmd->SetText(1, "true"), VXR_BADARG);
  EXPECT_EQ(values(*cmd), before);
  std::int32_t integer = 0;
  EXPECT_EQ(cmd->GetInt(kScale, &integer), VXR_BADARG);
  EXPECT_EQ(cmd->SetInt(kScale, 3), VXR_OK);  // an integer is a float too
  double scale = 0;
  EXPECT_EQ(cmd->GetFloat(kScale, &scale), VXR_OK);
  EXPECT_EQ(scale, 3.0);
}

TEST_F(LoadOptions, RecordFieldsRunInTheirOwnOrderBoundToAttributes) {
  IVxCommandServer* cmd = command();
  ASSERT_NE(io(), nullptr);
  EXPECT_STREQ(io()->ConfigKey(), "loaderOptions.gltf");
  ASSERT_EQ(io()->FieldCount(), std::size(kRecordOrder));
  std::vector<int> fieldOfAttr(cmd->AttrCount(), -1);
  for (unsigned field = 0; field < io()->FieldCount(); ++field) {
    EXPECT_STREQ(io()->FieldName(field), kRecordOrder[field]);
    unsigned attr = 99;
    ASSERT_EQ(io()->FieldAttr(field, &attr), VXR_OK);
    ASSERT_LT(attr, cmd->AttrCount());
    EXPECT_STREQ(cmd->AttrName(attr), kRecordOrder[field]);
    EXPECT_EQ(fieldOfAttr[attr], -1) << "two fields bound to attribute " << attr;
    fieldOfAttr[attr] = static_cast<int>(field);
  }
  // Each attribute has its field: the record and the list convert both ways.
  for (unsigned attr = 0; attr < cmd->AttrCount(); ++attr) EXPECT_NE(fieldOfAttr[attr], -1) << cmd->AttrName(attr);
  unsigned attr = 0;
  EXPECT_EQ(io()->FieldAttr(18, &attr), VXR_OUTOFBOUNDS);
}

TEST_F(LoadOptions, WritersWriteEachFieldsAttributeInRecordOrder) {
  IVxCommandServer* cmd = command();
  setDistinctValues(*cmd);
  Sink sink;
  for (unsigned field = 0; field < io()->FieldCount(); ++field) ASSERT_EQ(io()->WriteField(field, cmd, &sink), VXR_OK);
  ASSERT_EQ(sink.written.size(), std::size(kRecordOrder));
  for (std::size_t i = 0; i < sink.written.size(); ++i) {
    const Entry& entry = sink.written[i];
    SCOPED_TRACE(entry.name);
    EXPECT_EQ(entry.name, kRecordOrder[i]);
    unsigned attr = 0;
    ASSERT_EQ(cmd->AttrLookup(entry.name.c_str(), &attr), VXR_OK);
    double value = 0;
    ASSERT_EQ(cmd->GetFloat(attr, &value), VXR_OK);
    EXPECT_EQ(entry.number, value);
    EXPECT_EQ(entry.kind, attr == kScale ? Entry::Float : attr == kRate || attr == kUnits ? Entry::Integer : Entry::Boolean);
  }
}

TEST_F(LoadOptions, VisitorSetsTheAttributesOfWhatTheWritersWrote) {
  IVxCommandServer* written = command();
  setDistinctValues(*written);
  Sink sink;
  for (unsigned field = 0; field < io()->FieldCount(); ++field) io()->WriteField(field, written, &sink);
  // Any order, and names the record does not know, as a hand-edited file may hold.
  std::vector<Entry> entries(sink.written.rbegin(), sink.written.rend());
  entries.insert(entries.begin() + 3, Entry{"loadUnicorns", Entry::Boolean, 1, ""});

  IVxCommandServer* restored = command();
  ASSERT_NE(values(*restored), values(*written));
  Entries persisted(entries);
  EXPECT_STREQ(visitor()->ConfigKey(), "loaderOptions.gltf");
  EXPECT_EQ(visitor()->Visit(&persisted, restored), VXR_OK);
  EXPECT_TRUE(persisted.rejected.empty());
  EXPECT_EQ(values(*restored), values(*written));

  // Each field's reader takes its entry into the bound attribute too.
  IVxCommandServer* byField = command();
  Entries inOrder(sink.written);
  for (unsigned field = 0; field < io()->FieldCount(); ++field)
    EXPECT_EQ(io()->ReadField(field, &inOrder, field, byField), VXR_OK);
  EXPECT_EQ(values(*byField), values(*written));
}

TEST_F(LoadOptions, VisitorRejectsEntriesThatDoNotFitAndKeepsTheRest) {
  IVxCommandServer* cmd = command();
  const std::vector<double> before = values(*cmd);
  Entries persisted({{"loadGeometry", Entry::Integer, 2, ""},
                     {"importUnits", Entry::Integer, 12, ""},
                     {"globalScalingFactor", Entry::Text, 0, "big"},
                     {"loadSampleAnimationRate", Entry::Float, 1, ""},
                     {"loadCameras", Entry::Boolean, 1 - before[11], ""}});
  EXPECT_EQ(visitor()->Visit(&persisted, cmd), VXR_FALSE);
  EXPECT_EQ(persisted.rejected, (std::vector<unsigned>{0, 1, 2, 3}));
  std::vector<double> expected = before;
  expected[11] = 1 - before[11];
  EXPECT_EQ(values(*cmd), expected);
}

TEST_F(LoadOptions, FirstCommandBuildsTheOptionSetOnceAndCommandsShareIt) {
  EXPECT_TRUE(host.loaderOptions.empty());  // not at load: the first command builds it
  IVxCommandServer* first = command();
  IVxCommandServer* second = command();
  ASSERT_EQ(host.loaderOptions.size(), 1u);
  EXPECT_EQ(host.loaderOptions[0].first, "gltfLoader");
  IVxAttributes& set = *host.loaderOptions[0].second;
  ASSERT_EQ(set.AttrCount(), std::size(kAttributes));
  for (unsigned i = 0; i < set.AttrCount(); ++i) EXPECT_STREQ(set.AttrName(i), kAttributes[i].name);

  setDistinctValues(*first);
  EXPECT_NE(values(set), values(*first));  // not before it executes
  ASSERT_EQ(first->Execute(), VXR_OK);
  EXPECT_STREQ(first->Message(), "");
  EXPECT_EQ(values(set), values(*first));
  EXPECT_NE(values(*second), values(set));  // a command keeps its own values until it runs

  IVxCommandServer* third = command();
  EXPECT_EQ(values(*third), values(set));  // and starts from the shared ones
  ASSERT_EQ(second->Execute(), VXR_OK);
  EXPECT_EQ(values(set), values(*second));
  EXPECT_EQ(host.loaderOptions.size(), 1u);
}

}  // namespace
