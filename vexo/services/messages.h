// Messages shown to the user: texts from message tables with "%1".."%9" filled in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

struct RaisedMessage {
  std::uint32_t code;
  std::string table;
  std::uint32_t entry;
  std::string text;
};

// The text of a table entry, or null when the host has no such entry.
const char* messageTemplate(std::string_view table, std::uint32_t entry);

// Replaces "%N" (N from 1 to 9) with argument N, or with nothing when there
// are fewer arguments; "%%" is a percent sign.
std::string formatMessage(std::string_view text, const std::vector<std::string>& args);

// The messages raised so far. A headless host has no dialog to show them in.
class Messages {
 public:
  // False when the table entry does not exist.
  bool raise(std::uint32_t code, std::string_view table, std::uint32_t entry, const std::vector<std::string>& args);
  const std::vector<RaisedMessage>& raised() const { return raised_; }

 private:
  std::vector<RaisedMessage> raised_;
};

}  // namespace vexo
