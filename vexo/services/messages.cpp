#include "services/messages.h"

namespace vexo {
namespace {

struct MessageEntry {
  std::string_view table;
  std::uint32_t entry;
  const char* text;
};

// "common" 2020 passes a module's own text through unchanged.
const MessageEntry kMessages[] = {
    {"common", 2020, "%1"},
};

}  // namespace

const char* messageTemplate(std::string_view table, std::uint32_t entry) {
  for (const MessageEntry& message : kMessages)
    if (message.table == table && message.entry == entry) return message.text;
  return nullptr;
}

std::string formatMessage(std::string_view text, const std::vector<std::string>& args) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char next = i + 1 < text.size() ? text[i + 1] : '\0';
    if (text[i] == '%' && next >= '1' && next <= '9') {
      std::size_t arg = static_cast<std::size_t>(next - '1');
      if (arg < args.size()) out += args[arg];
      ++i;
    } else if (text[i] == '%' && next == '%') {
      out += '%';
      ++i;
    } else {
      out += text[i];
    }
  }
  return out;
}

bool Messages::raise(std::uint32_t code, std::string_view table, std::uint32_t entry,
                     const std::vector<std::string>& args) {
  const char* text = messageTemplate(table, entry);
  if (!text) return false;
  raised_.push_back({code, std::string(table), entry, formatMessage(text, args)});
  return true;
}

}  // namespace vexo
