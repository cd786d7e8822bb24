// Host user values: settings by key, typed by how their text parses.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace vexo {

struct UserValue {
  enum class Kind { Integer, Float, Text };
  Kind kind;
  std::int32_t integer = 0;  // Kind::Integer
  double number = 0.0;       // Kind::Integer and Kind::Float
  std::string text;          // every kind: the text as it was set
};

// A 32-bit integer when the whole text reads as one, else a finite float
// when it reads as one, else text.
UserValue parseUserValue(std::string_view text);

class UserValues {
 public:
  void set(std::string key, std::string_view text) { values_[std::move(key)] = parseUserValue(text); }
  const UserValue* find(std::string_view key) const;

 private:
  std::map<std::string, UserValue, std::less<>> values_;
};

}  // namespace vexo
