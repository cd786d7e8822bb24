// The persisted entries of a configuration section, handed to a module's
// readers and visitor, and the sink its writers fill.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "services/configuration.h"
#include "vexo/vx_attributes.h"

namespace vexo {

class SdkPersistEntries final : public IVxPersistEntries {
 public:
  explicit SdkPersistEntries(const std::vector<ConfigEntry>& entries) : entries_(entries) {}

  unsigned EntryCount() const override { return static_cast<unsigned>(entries_.size()); }
  const char* EntryName(unsigned index) const override;
  VxResult EntryInt(unsigned index, std::int32_t* value) const override;
  VxResult EntryFloat(unsigned index, double* value) const override;
  VxResult EntryText(unsigned index, const char** text) const override;
  void Reject(unsigned index, const char* reason) override;

  // (entry index, reason) for each entry a reader rejected, in order.
  const std::vector<std::pair<unsigned, std::string>>& rejected() const { return rejected_; }

 private:
  const std::vector<ConfigEntry>& entries_;
  std::vector<std::pair<unsigned, std::string>> rejected_;
};

class SdkPersistSink final : public IVxPersistSink {
 public:
  VxResult WriteBoolean(const char* name, bool value) override;
  VxResult WriteInt(const char* name, std::int32_t value) override;
  VxResult WriteFloat(const char* name, double value) override;
  VxResult WriteText(const char* name, const char* text) override;

  // The values written, in the order written.
  std::vector<ConfigEntry>& entries() { return entries_; }

 private:
  VxResult add(const char* name, ConfigValue value);

  std::vector<ConfigEntry> entries_;
};

}  // namespace vexo
