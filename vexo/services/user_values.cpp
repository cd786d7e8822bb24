#include "services/user_values.h"

#include <charconv>
#include <cmath>

namespace vexo {
namespace {

template <typename T>
bool parseWhole(std::string_view text, T& value) {
  const char* end = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(text.data(), end, value);
  return ec == std::errc() && ptr == end;
}

}  // namespace

UserValue parseUserValue(std::string_view text) {
  UserValue value{UserValue::Kind::Text, 0, 0.0, std::string(text)};
  std::int32_t integer = 0;
  double number = 0.0;
  if (parseWhole(text, integer)) {
    value.kind = UserValue::Kind::Integer;
    value.integer = integer;
    value.number = integer;
  } else if (parseWhole(text, number) && std::isfinite(number)) {
    value.kind = UserValue::Kind::Float;
    value.number = number;
  }
  return value;
}

const UserValue* UserValues::find(std::string_view key) const {
  auto it = values_.find(key);
  return it == values_.end() ? nullptr : &it->second;
}

}  // namespace vexo
