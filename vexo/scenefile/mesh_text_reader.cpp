#include "scenefile/mesh_text_reader.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "scenefile/json_number.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

// Powers of ten a double holds exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

struct MapTypeName {
  std::string_view code;
  std::uint32_t type;
};
constexpr MapTypeName kMapTypes[] = {
    {"NORM", VX_VMAP_NORMAL},    {"RGB ", VX_VMAP_RGB},    {"RGBA", VX_VMAP_RGBA},
    {"TXUV", VX_VMAP_TEXTUREUV}, {"TBAS", VX_VMAP_TBASIS}, {"WGHT", VX_VMAP_WEIGHT},
};
constexpr unsigned kMaxDimension = 6;

bool isDigit(char c) { return static_cast<unsigned>(c - '0') < 10u; }

struct CornerText {
  std::uint32_t polygon, point;
};

struct MapText {
  std::uint32_t type = 0;
  unsigned dimension = 0;
  std::string_view name;
  bool hasName = false, hasPoints = false;
  std::vector<float> pointValues;        // `dimension` per point; zeros where there is none
  std::vector<std::uint8_t> pointGiven;  // per point
  std::size_t pointNulls = 0;
  std::vector<CornerText> corners;
  std::vector<float> cornerValues;
};

// Polygons in a row with the same material tag.
struct TagRun {
  std::uint32_t first, count;
  std::string_view tag;
};

// The parse: each member's values into flat arrays, then, once the whole value
// has parsed, the mesh built from them in the general reader's order.
class MeshText {
 public:
  MeshText(std::string_view text, std::size_t begin)
      : begin_(text.data()), p_(text.data() + begin), end_(text.data() + text.size()) {}

  bool parse() { return object([this](std::string_view key) { return meshMember(key); }); }
  std::size_t offset() const { return static_cast<std::size_t>(p_ - begin_); }
  bool build(MeshData& mesh);

 private:
  // --- the grammar: white space, comments and trailing commas as the general reader takes them

  // Skips white space and comments; false at a '/' that starts no closed comment.
  bool skip() {
    // Compact text has nothing to skip: one test for the common case.
    if (p_ < end_ && static_cast<unsigned char>(*p_) > ' ' && *p_ != '/') return true;
    while (p_ < end_) {
      const char c = *p_;
      if (c == ' ' || c == '\n' || c == '\r' || c == '\t') {
        ++p_;
      } else if (c == '/') {
        if (end_ - p_ >= 2 && p_[1] == '/') {
          while (p_ < end_ && *p_ != '\n') ++p_;
        } else if (end_ - p_ >= 2 && p_[1] == '*') {
          const char* close = p_ + 2;
          while (close + 1 < end_ && !(close[0] == '*' && close[1] == '/')) ++close;
          if (close + 1 >= end_) return false;
          p_ = close + 2;
        } else {
          return false;
        }
      } else {
        return true;
      }
    }
    return true;
  }

  bool take(char c) {
    if (p_ >= end_ || *p_ != c) return false;
    ++p_;
    return true;
  }

  // At the opening bracket: the elements, each read by `element` from its first character.
  template <typename Element>
  bool array(Element&& element) {
    if (!take('[') || !skip()) return false;
    if (take(']')) return true;
    for (;;) {
      if (!element() || !skip()) return false;
      if (take(']')) return true;
      if (!take(',') || !skip()) return false;
      if (take(']')) return true;
    }
  }

  // At the opening brace: the members, each value read by `member(key)` from its first character.
  template <typename Member>
  bool object(Member&& member) {
    if (!take('{') || !skip()) return false;
    if (take('}')) return true;
    for (;;) {
      std::string_view key;
      if (!string(key) || !skip() || !take(':') || !skip() || !member(key) || !skip()) return false;
      if (take('}')) return true;
      if (!take(',') || !skip()) return false;
      if (take('}')) return true;
    }
  }

  // A string without escapes, in well-formed UTF-8 (no surrogates, no overlong forms).
  bool string(std::string_view& out) {
    if (!take('"')) return false;
    const char* first = p_;
    for (;;) {
      if (p_ >= end_) return false;
      const auto c = static_cast<unsigned char>(*p_);
      if (c == '"') break;
      if (c == '\\' || c < 0x20) return false;
      if (c < 0x80) {
        ++p_;
      } else if (!utf8Character()) {
        return false;
      }
    }
    out = std::string_view(first, static_cast<std::size_t>(p_ - first));
    ++p_;
    return true;
  }

  bool utf8Character() {
    const auto byte = [this](std::ptrdiff_t i) { return static_cast<unsigned char>(p_[i]); };
    const auto tail = [&](std::ptrdiff_t i, unsigned low = 0x80, unsigned high = 0xBF) {
      return p_ + i < end_ && byte(i) >= low && byte(i) <= high;
    };
    const unsigned c = byte(0);
    std::ptrdiff_t length = 0;
    if (c >= 0xC2 && c <= 0xDF) {
      length = tail(1) ? 2 : 0;
    } else if (c >= 0xE0 && c <= 0xEF) {
      const bool second = c == 0xE0 ? tail(1, 0xA0) : c == 0xED ? tail(1, 0x80, 0x9F) : tail(1);
      length = second && tail(2) ? 3 : 0;
    } else if (c >= 0xF0 && c <= 0xF4) {
      const bool second = c == 0xF0 ? tail(1, 0x90) : c == 0xF4 ? tail(1, 0x80, 0x8F) : tail(1);
      length = second && tail(2) && tail(3) ? 4 : 0;
    }
    p_ += length;
    return length != 0;
  }

  bool null() {
    if (end_ - p_ < 4 || std::string_view(p_, 4) != "null") return false;
    p_ += 4;
    return true;
  }

  bool fail(const char* at) {
    p_ = at;
    return false;
  }

  // A JSON number, correctly rounded as the general reader rounds it. False as
  // well for numbers beyond the largest double, which the general reader reports.
  bool number(double& out) {
    // Local copies of the cursor keep it in a register through the digit loops.
    const char* p = p_;
    const char* const end = end_;
    const char* const first = p;
    const bool negative = p < end && *p == '-';
    p += negative;
    std::uint64_t mantissa = 0;  // exact while there are at most 19 digits
    const char* digits = p;
    unsigned d = 0;
    if (p < end && *p == '0') {
      ++p;
    } else {
      for (; p < end && (d = static_cast<unsigned>(*p - '0')) < 10u; ++p) mantissa = mantissa * 10 + d;
    }
    if (p == digits) return fail(p);
    std::ptrdiff_t fractionDigits = 0;
    if (p < end && *p == '.') {
      const char* fraction = ++p;
      for (; p < end && (d = static_cast<unsigned>(*p - '0')) < 10u; ++p) mantissa = mantissa * 10 + d;
      fractionDigits = p - fraction;
      if (fractionDigits == 0) return fail(p);
    }
    const std::ptrdiff_t count = (p - digits) - (fractionDigits ? 1 : 0);
    int exponent = 0;
    if (p < end && (*p == 'e' || *p == 'E')) {
      ++p;
      const bool negativeExponent = p < end && *p == '-';
      if (p < end && (*p == '-' || *p == '+')) ++p;
      if (p >= end || !isDigit(*p)) return fail(p);
      for (; p < end && isDigit(*p); ++p) exponent = exponent < 100000 ? exponent * 10 + (*p - '0') : exponent;
      if (negativeExponent) exponent = -exponent;
    }
    p_ = p;
    // A mantissa up to 2^53 is an exact double, and so is a power of ten up
    // to 22: one multiplication or division of the two rounds correctly.
    if (count <= 19 && mantissa <= (std::uint64_t(1) << 53)) {
      exponent -= static_cast<int>(fractionDigits);
      const double value = static_cast<double>(mantissa);
      if (mantissa == 0) {
        out = negative ? -0.0 : 0.0;
        return true;
      }
      if (exponent >= 0 && exponent <= 22) {
        out = negative ? -(value * kExactPowers[exponent]) : value * kExactPowers[exponent];
        return true;
      }
      if (exponent < 0 && exponent >= -22) {
        out = negative ? -(value / kExactPowers[-exponent]) : value / kExactPowers[-exponent];
        return true;
      }
    }
    // Longer numbers: std::from_chars rounds correctly too. Beyond a double's
    // range they are converted as the general reader converts them.
    const std::from_chars_result r = std::from_chars(first, p, out);
    if (r.ec == std::errc() && r.ptr == p) return true;
    JsonNumber converted;
    if (!readJsonNumber(std::string_view(first, static_cast<std::size_t>(p - first)), converted)) return false;
    out = converted.number;
    return true;
  }

  // A whole number from 0 that fits 32 bits, written without fraction or exponent.
  bool index(std::uint32_t& out) {
    if (p_ >= end_ || !isDigit(*p_)) return false;
    std::uint64_t value = static_cast<unsigned>(*p_++ - '0');
    if (value != 0) {
      for (; p_ < end_ && isDigit(*p_); ++p_) {
        value = value * 10 + static_cast<unsigned>(*p_ - '0');
        if (value > 0xffffffffu) return false;
      }
    }
    if (p_ < end_ && (*p_ == '.' || *p_ == 'e' || *p_ == 'E')) return false;
    out = static_cast<std::uint32_t>(value);
    return true;
  }

  // A number within the range of a float, as a float.
  bool floatNumber(float& out) {
    double value = 0.0;
    if (!number(value) || std::fabs(value) > std::numeric_limits<float>::max()) return false;
    out = static_cast<float>(value);
    return true;
  }

  // `count` numbers into `out` as floats; a lone number stands for one when `count` is 1.
  bool floats(unsigned count, float* out) {
    if (count == 1 && p_ < end_ && *p_ != '[') return floatNumber(out[0]);
    unsigned n = 0;
    const bool read = array([&] { return n < count && floatNumber(out[n++]); });
    return read && n == count;
  }

  // --- the members

  // Each key at most once: a repeat is a fault.
  static bool once(unsigned& seen, unsigned bit) {
    if (seen & bit) return false;
    seen |= bit;
    return true;
  }

  bool meshMember(std::string_view key) {
    if (key == "points") return once(seen_, 1) && points();
    if (key == "polygons") return once(seen_, 2) && polygons();
    if (key == "materials") return once(seen_, 4) && materials();
    if (key == "smoothingAngle") return once(seen_, 8) && number(smoothingAngle_);
    if (key == "maps") return once(seen_, 16) && array([this] { return map(); });
    return false;
  }

  bool points() {
    return array([this] {
      double xyz[3];
      unsigned n = 0;
      const bool read = array([&] { return n < 3 && number(xyz[n++]); });
      if (!read || n != 3) return false;
      points_.push_back({xyz[0], xyz[1], xyz[2]});
      return true;
    });
  }

  bool polygons() {
    return array([this] {
      std::uint32_t point = 0;
      const bool read = array([&] {
        if (!index(point)) return false;
        corners_.push_back(point);
        return true;
      });
      if (!read || corners_.size() > 0xffffffffu) return false;
      offsets_.push_back(static_cast<std::uint32_t>(corners_.size()));
      return true;
    });
  }

  bool materials() {
    std::uint32_t polygon = 0;
    return array([&] {
      std::string_view tag;
      if (!string(tag)) return false;
      if (!tagRuns_.empty() && tagRuns_.back().tag == tag)
        ++tagRuns_.back().count;
      else
        tagRuns_.push_back({polygon, 1, tag});
      ++polygon;
      return true;
    });
  }

  bool map() {
    maps_.emplace_back();
    MapText& map = maps_.back();
    unsigned seen = 0;
    const bool read = object([&](std::string_view key) {
      if (key == "type") {
        std::string_view code;
        if (!once(seen, 1) || !string(code)) return false;
        for (const MapTypeName& row : kMapTypes)
          if (code == row.code) map.type = row.type;
        map.dimension = defaultMapDimension(map.type);
        return map.type != 0;
      }
      if (key == "name") {
        map.hasName = true;
        return once(seen, 2) && string(map.name) && !map.name.empty();
      }
      // Values are read at the map's dimension, so its type must come first.
      if (key == "points") return once(seen, 4) && map.dimension && mapPoints(map);
      if (key == "corners") return once(seen, 8) && map.dimension && mapCorners(map);
      return false;
    });
    return read && map.type && map.hasName;
  }

  bool mapPoints(MapText& map) {
    map.hasPoints = true;
    float value[kMaxDimension];
    return array([&] {
      if (null()) {
        map.pointValues.insert(map.pointValues.end(), map.dimension, 0.0f);
        map.pointGiven.push_back(0);
        ++map.pointNulls;
        return true;
      }
      if (!floats(map.dimension, value)) return false;
      for (unsigned i = 0; i < map.dimension; ++i) map.pointValues.push_back(value[i]);
      map.pointGiven.push_back(1);
      return true;
    });
  }

  bool mapCorners(MapText& map) {
    return array([&] {
      CornerText corner{};
      float value[kMaxDimension];
      unsigned seen = 0;
      const bool read = object([&](std::string_view key) {
        if (key == "polygon") return once(seen, 1) && index(corner.polygon);
        if (key == "point") return once(seen, 2) && index(corner.point);
        if (key == "value") return once(seen, 4) && floats(map.dimension, value);
        return false;
      });
      if (!read || seen != 7) return false;
      map.corners.push_back(corner);
      for (unsigned i = 0; i < map.dimension; ++i) map.cornerValues.push_back(value[i]);
      return true;
    });
  }

  const char* begin_;
  const char* p_;
  const char* end_;

  unsigned seen_ = 0;  // the mesh's members, a bit each
  std::vector<Vec3> points_;
  std::vector<std::uint32_t> corners_;
  std::vector<std::uint32_t> offsets_{0};  // where each polygon starts in corners_, and where the last ends
  std::vector<TagRun> tagRuns_;
  double smoothingAngle_ = 0.0;
  std::vector<MapText> maps_;
};

bool MeshText::build(MeshData& mesh) {
  try {
    // The mesh takes the arrays over whole.
    if (seen_ & 1) mesh.setPoints(std::move(points_));
    if (seen_ & 2) mesh.setPolygons(std::move(offsets_), std::move(corners_));
    if (seen_ & 4) {
      const std::size_t tags = tagRuns_.empty() ? 0 : std::size_t(tagRuns_.back().first) + tagRuns_.back().count;
      if (tags != mesh.polygonCount()) return false;
      for (const TagRun& run : tagRuns_) mesh.setPolygonTags(run.first, run.count, VX_PTAG_MATERIAL, run.tag);
    }
    if (seen_ & 8) mesh.setSmoothingAngle(smoothingAngle_);
    for (MapText& text : maps_) {
      const std::size_t map = mesh.addMap(text.type, std::string(text.name));
      if (text.hasPoints) {
        if (text.pointGiven.size() != mesh.pointCount()) return false;
        if (text.pointNulls == 0) {
          mesh.setPointValues(map, std::move(text.pointValues));
        } else {
          for (std::uint32_t p = 0; p < text.pointGiven.size(); ++p)
            if (text.pointGiven[p]) mesh.setPointValue(map, p, &text.pointValues[std::size_t(p) * text.dimension]);
        }
      }
      for (std::size_t i = 0; i < text.corners.size(); ++i) {
        mesh.setCornerValue(map, text.corners[i].polygon, text.corners[i].point,
                            &text.cornerValues[i * text.dimension]);
      }
    }
  } catch (const MeshError&) {
    return false;  // the general reader says what and where
  }
  return true;
}

}  // namespace

std::size_t readMeshText(std::string_view text, std::size_t begin, MeshData& mesh) {
  MeshText reader(text, begin);
  if (!reader.parse() || !reader.build(mesh)) return std::string_view::npos;
  return reader.offset();
}

}  // namespace vexo
