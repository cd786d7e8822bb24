// Converts the text of a JSON number to the value it writes: an integer when
// it has no fraction or exponent and fits 64 bits, else the correctly rounded
// double. Numbers beyond the largest double are refused rather than read as
// infinity; numbers too small for the smallest one read as zero of their sign.
#pragma once

#include <cstdint>
#include <string_view>

namespace vexo {

struct JsonNumber {
  bool isInteger = false;
  std::int64_t integer = 0;  // when isInteger
  double number = 0.0;       // always, rounded from the integer when isInteger
};

// `text` must be a JSON number as the grammar writes it (a parser checked it).
// False when its magnitude is beyond the largest double.
bool readJsonNumber(std::string_view text, JsonNumber& out);

// Whether a number's text can be beyond the largest double at all: only with
// an exponent or a great many digits. Lets a pass that only checks numbers skip
// converting the common ones.
inline bool jsonNumberMayOverflow(std::string_view text) {
  return text.size() > 300 || text.find_first_of("eE") != std::string_view::npos;
}

}  // namespace vexo
