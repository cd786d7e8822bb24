#include "scenefile/json_number.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace vexo {
namespace {

// Powers of ten a double holds exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The common short number without a conversion call: up to 15 significant
// digits and a power of ten up to 22 are both exact doubles, so one
// multiplication or division rounds correctly. False when the text is not such a number.
bool shortNumber(std::string_view text, double& out) {
  std::size_t i = 0;
  const bool negative = text[0] == '-';
  if (negative) ++i;
  std::uint64_t mantissa = 0;
  int digits = 0, exponent = 0;
  bool significant = false;
  for (; i < text.size() && isDigit(text[i]); ++i) {
    significant = significant || text[i] != '0';
    if (significant && ++digits > 15) return false;
    mantissa = mantissa * 10 + static_cast<unsigned>(text[i] - '0');
  }
  if (i < text.size() && text[i] == '.') {
    for (++i; i < text.size() && isDigit(text[i]); ++i) {
      significant = significant || text[i] != '0';
      if (significant && ++digits > 15) return false;
      mantissa = mantissa * 10 + static_cast<unsigned>(text[i] - '0');
      --exponent;
    }
  }
  if (i < text.size()) {  // an exponent
    ++i;
    bool negativeExponent = false;
    if (text[i] == '+' || text[i] == '-') negativeExponent = text[i++] == '-';
    int written = 0;
    for (; i < text.size(); ++i) {
      written = written * 10 + (text[i] - '0');
      if (written > 400) return false;
    }
    exponent += negativeExponent ? -written : written;
  }
  double value = static_cast<double>(mantissa);
  if (mantissa == 0) {
    value = 0.0;
  } else if (exponent >= 0 && exponent <= 22) {
    value *= kExactPowers[exponent];
  } else if (exponent < 0 && exponent >= -22) {
    value /= kExactPowers[-exponent];
  } else {
    return false;
  }
  out = negative ? -value : value;
  return true;
}

// For a number out of a double's range: whether it is too big rather than too small.
bool beyondLargest(std::string_view text) {
  std::size_t i = text[0] == '-' ? 1 : 0;
  long scale = 0;  // the power of ten of the first significant digit, less the exponent
  bool seen = false;
  for (; i < text.size() && isDigit(text[i]); ++i) {
    if (seen || text[i] != '0') {
      seen = true;
      ++scale;
    }
  }
  if (i < text.size() && text[i] == '.') {
    for (++i; i < text.size() && isDigit(text[i]); ++i) {
      if (seen) break;
      if (text[i] != '0') seen = true;
      --scale;
    }
    while (i < text.size() && isDigit(text[i])) ++i;
  }
  long exponent = 0;
  if (i < text.size()) {
    ++i;
    const bool negative = text[i] == '-';
    if (text[i] == '+' || text[i] == '-') ++i;
    for (; i < text.size() && exponent < 100000000; ++i) exponent = exponent * 10 + (text[i] - '0');
    if (negative) exponent = -exponent;
  }
  return scale + exponent > 0;
}

}  // namespace

bool readJsonNumber(std::string_view text, JsonNumber& out) {
  out = JsonNumber{};
  const char* first = text.data();
  const char* last = first + text.size();
  if (text.find_first_of(".eE") == std::string_view::npos) {
    std::int64_t integer = 0;
    const std::from_chars_result r = std::from_chars(first, last, integer);
    if (r.ec == std::errc() && r.ptr == last) {
      out.isInteger = true;
      out.integer = integer;
      // "-0" keeps its sign where it is read as a number.
      out.number = integer == 0 && text[0] == '-' ? -0.0 : static_cast<double>(integer);
      return true;
    }
  }
  if (shortNumber(text, out.number)) return true;
  // std::from_chars rounds correctly and, unlike strtod, ignores the locale.
  const std::from_chars_result r = std::from_chars(first, last, out.number);
  if (r.ec == std::errc()) return true;
  if (beyondLargest(text)) return false;
  out.number = text[0] == '-' ? -0.0 : 0.0;  // below the smallest double: zero is the nearest
  return true;
}

}  // namespace vexo
