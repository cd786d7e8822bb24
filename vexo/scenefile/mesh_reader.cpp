#include "scenefile/mesh_reader.h"

#include <rapidjson/document.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <type_traits>
#include <unordered_map>

#include "mesh/mesh_data.h"
#include "scenefile/json_allocator.h"
#include "scenefile/json_number.h"
#include "scenefile/mesh_text_reader.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

using Value = JsonValue;
using KeyNames = std::vector<const char*>;

// As the positioned tree parses: the raw text has already passed its checks.
constexpr unsigned kParseFlags =
    rapidjson::kParseCommentsFlag | rapidjson::kParseTrailingCommasFlag | rapidjson::kParseNumbersAsStringsFlag;

// Hands the reader's events to a document, numbers converted as the
// positioned tree converts them (correctly rounded).
class NumberConverter {
 public:
  using Ch = char;
  using SizeType = rapidjson::SizeType;
  explicit NumberConverter(JsonDocument& doc) : doc_(doc) {}

  bool Null() { return doc_.Null(); }
  bool Bool(bool b) { return doc_.Bool(b); }
  bool Int(int) { return false; }  // numbers come as text
  bool Uint(unsigned) { return false; }
  bool Int64(std::int64_t) { return false; }
  bool Uint64(std::uint64_t) { return false; }
  bool Double(double) { return false; }
  bool RawNumber(const Ch* s, SizeType length, bool) {
    JsonNumber number;
    if (!readJsonNumber({s, length}, number)) return false;
    // "-0" is a float, so that it keeps its sign.
    if (!number.isInteger || std::signbit(number.number)) return doc_.Double(number.number);
    return doc_.Int64(number.integer);
  }
  bool String(const Ch* s, SizeType length, bool copy) { return doc_.String(s, length, copy); }
  bool StartObject() { return doc_.StartObject(); }
  bool Key(const Ch* s, SizeType length, bool copy) { return doc_.Key(s, length, copy); }
  bool EndObject(SizeType count) { return doc_.EndObject(count); }
  bool StartArray() { return doc_.StartArray(); }
  bool EndArray(SizeType count) { return doc_.EndArray(count); }

 private:
  JsonDocument& doc_;
};

// Parses `text` into `doc`; false when it does not parse.
bool parseMeshText(std::string_view text, JsonDocument& doc) {
  bool parsed = false;
  auto generate = [&](JsonDocument& handler) {
    NumberConverter converter(handler);
    rapidjson::MemoryStream stream(text.data(), text.size());
    JsonReader reader;
    parsed = !reader.Parse<kParseFlags>(stream, converter).IsError();
    return parsed;
  };
  doc.Populate(generate);
  return parsed;
}

const KeyNames kMeshKeys = {"points", "polygons", "materials", "smoothingAngle", "maps"};
const KeyNames kMapKeys = {"type", "name", "points", "corners"};
const KeyNames kCornerKeys = {"polygon", "point", "value"};

struct MapTypeName {
  const char* code;
  std::uint32_t type;
};
const MapTypeName kMapTypes[] = {
    {"NORM", VX_VMAP_NORMAL}, {"RGB ", VX_VMAP_RGB},    {"RGBA", VX_VMAP_RGBA},
    {"TXUV", VX_VMAP_TEXTUREUV}, {"TBAS", VX_VMAP_TBASIS}, {"WGHT", VX_VMAP_WEIGHT},
};

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string keyNames(const KeyNames& keys) {
  std::string list;
  for (std::size_t i = 0; i < keys.size(); ++i) list += (i ? ", " : "") + quoted(keys[i]);
  return list;
}

std::string_view stringOf(const Value& v) { return {v.GetString(), v.GetStringLength()}; }

// A value for a message: numbers as written, arrays with their length, anything else by its kind.
std::string describe(const Value& v) {
  if (v.IsNumber()) {
    std::ostringstream out;
    out.precision(17);
    if (v.IsInt64())
      out << v.GetInt64();
    else if (v.IsUint64())
      out << v.GetUint64();
    else
      out << v.GetDouble();
    return out.str();
  }
  if (v.IsArray()) return "an array of " + std::to_string(v.Size());
  if (v.IsString()) return "a string";
  if (v.IsObject()) return "an object";
  if (v.IsBool()) return "a boolean";
  return "null";
}

// Reads one "mesh" value. The walk keeps the path of the value it is at
// (element and member indices), which is all a message needs to find its place.
class MeshValueReader {
 public:
  MeshValueReader(std::string_view text, const JsonNode& raw, MeshData& mesh, JsonError& error)
      : text_(text), raw_(raw), mesh_(mesh), error_(error) {}

  bool read() {
    const std::string_view span = text_.substr(raw_.rawBegin, raw_.rawEnd - raw_.rawBegin);
    JsonDocument doc;
    if (!parseMeshText(span, doc)) return fail("the mesh is not valid JSON");
    if (!doc.IsObject()) return fail("\"mesh\" takes an object, not " + describe(doc));
    std::vector<const Value*> members;
    if (!readKeys(doc, kMeshKeys, "in a mesh", members)) return false;
    auto at = [&](std::size_t k, bool (MeshValueReader::*step)(const Value&)) {
      if (!members[k]) return true;
      Step s(*this, memberIndex(doc, members[k]));
      return (this->*step)(*members[k]);
    };
    return at(0, &MeshValueReader::readPoints) && at(1, &MeshValueReader::readPolygons) &&
           at(2, &MeshValueReader::readMaterials) && at(3, &MeshValueReader::readSmoothing) &&
           at(4, &MeshValueReader::readMaps);
  }

 private:
  // Enters an element or member for as long as it lives.
  class Step {
   public:
    Step(MeshValueReader& reader, std::size_t index) : path_(reader.path_) { path_.push_back(index); }
    ~Step() { path_.pop_back(); }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

   private:
    std::vector<std::size_t>& path_;
  };

  bool failAt(bool key, const std::string& message) {
    const std::string_view span = text_.substr(raw_.rawBegin, raw_.rawEnd - raw_.rawBegin);
    std::size_t offset = findJsonValue(span, path_, key);
    if (offset == std::string_view::npos) offset = 0;
    error_ = {textPosition(text_, raw_.rawBegin + offset), message};
    return false;
  }
  bool fail(const std::string& message) { return failAt(false, message); }

  static std::size_t memberIndex(const Value& object, const Value* value) {
    std::size_t i = 0;
    for (auto m = object.MemberBegin(); m != object.MemberEnd(); ++m, ++i)
      if (&m->value == value) return i;
    return i;
  }

  // Unknown and repeated keys are errors; `found[k]` gets the value of `allowed[k]`, or null.
  bool readKeys(const Value& object, const KeyNames& allowed, const char* where, std::vector<const Value*>& found) {
    found.assign(allowed.size(), nullptr);
    std::size_t index = 0;
    for (auto m = object.MemberBegin(); m != object.MemberEnd(); ++m, ++index) {
      const std::string_view key = stringOf(m->name);
      std::size_t k = 0;
      while (k < allowed.size() && key != allowed[k]) ++k;
      Step s(*this, index);
      if (k == allowed.size()) {
        return failAt(true, "unknown key " + quoted(key) + " " + where + "; expected one of " + keyNames(allowed));
      }
      if (found[k]) return failAt(true, "duplicate key " + quoted(key));
      found[k] = &m->value;
    }
    return true;
  }

  bool expectArray(const Value& v, const char* what) {
    return v.IsArray() || fail(std::string(what) + " takes an array, not " + describe(v));
  }

  // A number for `out`: floats stop at the largest float, where a double goes on.
  template <typename T>
  bool convert(const Value& v, const std::string& what, T& out) {
    const double value = v.GetDouble();
    if (std::is_same_v<T, float> && std::fabs(value) > std::numeric_limits<float>::max())
      return fail(what + " takes numbers up to the largest float (about 3.4e38), not " + describe(v));
    out = static_cast<T>(value);
    return true;
  }

  // `count` numbers into `out`; a lone number stands for an array of one when `bare`.
  template <typename T>
  bool readNumbers(const Value& v, unsigned count, const std::string& what, T* out, bool bare = false) {
    if (bare && count == 1 && v.IsNumber()) return convert(v, what, out[0]);
    if (!v.IsArray() || v.Size() != count) {
      return fail(what + " takes " + std::to_string(count) + (count == 1 ? " number" : " numbers") + ", not " +
                  describe(v));
    }
    for (unsigned i = 0; i < count; ++i) {
      const Value& element = v[i];
      Step s(*this, i);
      if (!element.IsNumber()) return fail(what + " takes numbers, not " + describe(element));
      if (!convert(element, what, out[i])) return false;
    }
    return true;
  }

  bool readIndex(const Value& v, const char* what, std::uint32_t& index) {
    if (!v.IsUint()) return fail(std::string(what) + " takes a whole number from 0, not " + describe(v));
    index = v.GetUint();
    return true;
  }

  bool readPoints(const Value& points) {
    if (!expectArray(points, "\"points\"")) return false;
    std::vector<double> xyz(3 * std::size_t(points.Size()));
    for (rapidjson::SizeType i = 0; i < points.Size(); ++i) {
      Step s(*this, i);
      if (!readNumbers(points[i], 3, "a point", &xyz[3 * std::size_t(i)])) return false;
    }
    try {
      mesh_.appendPoints(xyz.data(), points.Size());
    } catch (const MeshError& e) {
      return fail(e.what());
    }
    return true;
  }

  bool readPolygons(const Value& polygons) {
    if (!expectArray(polygons, "\"polygons\"")) return false;
    std::size_t corners = 0;
    for (const Value& polygon : polygons.GetArray()) corners += polygon.IsArray() ? polygon.Size() : 0;
    mesh_.reserve(mesh_.pointCount(), mesh_.polygonCount() + polygons.Size(), mesh_.cornerCount() + corners);
    std::vector<std::uint32_t> points;
    for (rapidjson::SizeType i = 0; i < polygons.Size(); ++i) {
      Step s(*this, i);
      const Value& polygon = polygons[i];
      if (!polygon.IsArray()) return fail("a polygon takes an array of point indices, not " + describe(polygon));
      points.resize(polygon.Size());
      for (rapidjson::SizeType k = 0; k < polygon.Size(); ++k) {
        Step element(*this, k);
        if (!readIndex(polygon[k], "a point index", points[k])) return false;
      }
      try {
        mesh_.addPolygon(points.data(), points.size());
      } catch (const MeshError& e) {
        // Most often a point that does not exist: point at it.
        for (std::size_t k = 0; k < points.size(); ++k) {
          if (points[k] >= mesh_.pointCount()) {
            Step element(*this, k);
            return fail(e.what());
          }
        }
        return fail(e.what());
      }
    }
    return true;
  }

  bool readMaterials(const Value& materials) {
    if (!expectArray(materials, "\"materials\"")) return false;
    if (materials.Size() != mesh_.polygonCount()) {
      return fail("\"materials\" has " + std::to_string(materials.Size()) + " tags for " +
                  std::to_string(mesh_.polygonCount()) + " polygons; give one per polygon");
    }
    // Neighbouring polygons mostly share their material: tag them in runs.
    rapidjson::SizeType first = 0;
    for (rapidjson::SizeType i = 0; i <= materials.Size(); ++i) {
      if (i < materials.Size()) {
        if (!materials[i].IsString()) {
          Step s(*this, i);
          return fail("a material tag takes a string, not " + describe(materials[i]));
        }
        if (stringOf(materials[i]) == stringOf(materials[first])) continue;
      }
      if (i > first) mesh_.setPolygonTags(first, i - first, VX_PTAG_MATERIAL, stringOf(materials[first]));
      first = i;
    }
    return true;
  }

  bool readSmoothing(const Value& angle) {
    if (!angle.IsNumber()) return fail("\"smoothingAngle\" takes a number of degrees, not " + describe(angle));
    try {
      mesh_.setSmoothingAngle(angle.GetDouble());
    } catch (const MeshError& e) {
      return fail(e.what());
    }
    return true;
  }

  bool readMaps(const Value& maps) {
    if (!expectArray(maps, "\"maps\"")) return false;
    for (rapidjson::SizeType i = 0; i < maps.Size(); ++i) {
      Step s(*this, i);
      if (!readMap(maps[i])) return false;
    }
    return true;
  }

  bool readMap(const Value& map) {
    if (!map.IsObject()) return fail("a vertex map takes an object, not " + describe(map));
    std::vector<const Value*> members;
    if (!readKeys(map, kMapKeys, "in a vertex map", members)) return false;
    const Value* type = members[0];
    const Value* name = members[1];
    if (!type) return fail("vertex map has no \"type\"");
    if (!name) return fail("vertex map has no \"name\"");

    std::uint32_t code = 0;
    {
      Step s(*this, memberIndex(map, type));
      if (!type->IsString()) return fail("\"type\" takes a string, not " + describe(*type));
      for (const MapTypeName& row : kMapTypes)
        if (stringOf(*type) == row.code) code = row.type;
      if (!code) {
        std::string codes;
        for (const MapTypeName& row : kMapTypes) codes += (codes.empty() ? "" : ", ") + quoted(row.code);
        return fail("unknown vertex map type " + quoted(stringOf(*type)) + "; expected one of " + codes);
      }
    }
    std::size_t index = 0;
    {
      Step s(*this, memberIndex(map, name));
      if (!name->IsString()) return fail("\"name\" takes a string, not " + describe(*name));
      if (name->GetStringLength() == 0) return fail("vertex map name is empty");
      try {
        index = mesh_.addMap(code, std::string(stringOf(*name)));
      } catch (const MeshError& e) {
        return fail(e.what());
      }
    }
    const std::string what = "a " + quoted(stringOf(*type)) + " value";
    if (const Value* points = members[2]) {
      Step s(*this, memberIndex(map, points));
      if (!readPointValues(*points, index, what)) return false;
    }
    if (const Value* corners = members[3]) {
      Step s(*this, memberIndex(map, corners));
      if (!readCornerValues(*corners, index, what)) return false;
    }
    return true;
  }

  bool readPointValues(const Value& values, std::size_t map, const std::string& what) {
    if (!expectArray(values, "\"points\"")) return false;
    if (values.Size() != mesh_.pointCount()) {
      return fail("vertex map " + quoted(mesh_.map(map).name()) + " has " + std::to_string(values.Size()) +
                  " point values for " + std::to_string(mesh_.pointCount()) +
                  " points; give one per point, null for a point without one");
    }
    const unsigned dimension = mesh_.map(map).dimension();
    std::vector<float> flat(std::size_t(dimension) * values.Size());
    bool every = true;
    for (rapidjson::SizeType p = 0; p < values.Size(); ++p) {
      if (values[p].IsNull()) {
        every = false;
        continue;
      }
      Step s(*this, p);
      if (!readNumbers(values[p], dimension, what, &flat[std::size_t(p) * dimension], true)) return false;
    }
    if (every) {
      mesh_.setPointValues(map, flat.data());
      return true;
    }
    for (rapidjson::SizeType p = 0; p < values.Size(); ++p)
      if (!values[p].IsNull()) mesh_.setPointValue(map, p, &flat[std::size_t(p) * dimension]);
    return true;
  }

  bool readCornerValues(const Value& corners, std::size_t map, const std::string& what) {
    if (!expectArray(corners, "\"corners\"")) return false;
    const unsigned dimension = mesh_.map(map).dimension();
    std::vector<float> value(dimension);
    std::vector<const Value*> members;
    for (rapidjson::SizeType i = 0; i < corners.Size(); ++i) {
      Step s(*this, i);
      const Value& corner = corners[i];
      if (!corner.IsObject()) return fail("a corner value takes an object, not " + describe(corner));
      if (!readKeys(corner, kCornerKeys, "in a corner value", members)) return false;
      for (std::size_t k = 0; k < kCornerKeys.size(); ++k)
        if (!members[k]) return fail("corner value has no " + quoted(kCornerKeys[k]));
      std::uint32_t polygon = 0, point = 0;
      const std::size_t polygonAt = memberIndex(corner, members[0]), pointAt = memberIndex(corner, members[1]);
      {
        Step m(*this, polygonAt);
        if (!readIndex(*members[0], "\"polygon\"", polygon)) return false;
      }
      {
        Step m(*this, pointAt);
        if (!readIndex(*members[1], "\"point\"", point)) return false;
      }
      {
        Step m(*this, memberIndex(corner, members[2]));
        if (!readNumbers(*members[2], dimension, what, value.data(), true)) return false;
      }
      try {
        mesh_.setCornerValue(map, polygon, point, value.data());
      } catch (const MeshError& e) {
        Step m(*this, polygon < mesh_.polygonCount() ? pointAt : polygonAt);
        return fail(e.what());
      }
    }
    return true;
  }

  std::string_view text_;
  const JsonNode& raw_;
  MeshData& mesh_;
  JsonError& error_;
  std::vector<std::size_t> path_;
};

}  // namespace

bool isItemMeshValue(const std::vector<JsonNode>& open, std::string_view key) {
  using Kind = JsonNode::Kind;
  // root { "items": [ item { "children": [ item ... ] } ] }: objects and arrays take turns.
  if (key != "mesh" || open.size() < 3 || open.size() % 2 == 0) return false;
  for (std::size_t i = 0; i < open.size(); ++i) {
    const JsonNode& node = open[i];
    if (node.kind != (i % 2 ? Kind::Array : Kind::Object)) return false;
    if (i % 2 || i + 1 == open.size()) continue;
    if (node.members.empty() || node.members.back().key != (i == 0 ? "items" : "children")) return false;
  }
  return true;
}

std::size_t MeshReader::readAhead(std::size_t begin) {
  MeshData mesh;
  const std::size_t end = readMeshText(text_, begin, mesh);
  if (end != std::string_view::npos) readAhead_.emplace(begin, std::move(mesh));
  return end;
}

bool MeshReader::readItem(const JsonNode& node, Item& item, JsonError& error) {
  MeshStore& store = scene_.meshes();
  for (const JsonMember& m : node.members) {
    if (m.key == "mesh") {
      if (!store.ownsMesh(item)) {
        error = {m.keyPos, "\"mesh\" is for items of type \"mesh\" or \"triSurf\", not " + quoted(item.type().name)};
        return false;
      }
      if (m.value.kind != JsonNode::Kind::Raw) {
        error = {m.value.pos, std::string("\"mesh\" takes an object, not ") + jsonKindName(m.value.kind)};
        return false;
      }
      MeshData& mesh = *store.ownMesh(item);
      if (auto ahead = readAhead_.find(m.value.rawBegin); ahead != readAhead_.end()) {
        std::string ident = mesh.ident();
        mesh = std::move(ahead->second);
        mesh.setIdent(std::move(ident));
        readAhead_.erase(ahead);
      } else if (!MeshValueReader(text_, m.value, mesh, error).read()) {
        return false;
      }
    } else if (m.key == "source") {
      if (!store.isInstance(item)) {
        error = {m.keyPos, "\"source\" is for items of type \"meshInst\", not " + quoted(item.type().name)};
        return false;
      }
      if (m.value.kind != JsonNode::Kind::String || m.value.text.empty()) {
        const std::string got = m.value.kind == JsonNode::Kind::String ? "an empty one" : jsonKindName(m.value.kind);
        error = {m.value.pos, "\"source\" takes the id or name of an item, not " + got};
        return false;
      }
      sources_.push_back({&item, m.value.text, m.value.pos});
    }
  }
  return true;
}

bool MeshReader::resolveSources(JsonError& error) {
  MeshStore& store = scene_.meshes();
  std::unordered_map<const Item*, const SourceRef*> byInstance;
  for (const SourceRef& source : sources_) byInstance[source.instance] = &source;

  for (const SourceRef& source : sources_) {
    const SourceRef* step = &source;
    const Item* found = nullptr;
    // Each instance is passed at most once on the way; more means a loop.
    for (std::size_t hops = 0; !found || store.isInstance(*found); ++hops) {
      if (hops > sources_.size()) {
        error = {source.pos, "the sources of " + quoted(source.instance->name()) + " go round in a loop"};
        return false;
      }
      std::string problem;
      found = findItemByRef(scene_, step->ref, &problem);
      if (!found) {
        error = {step->pos, "cannot find the source: " + problem};
        return false;
      }
      if (store.isInstance(*found)) {
        auto next = byInstance.find(found);
        if (next == byInstance.end()) {
          error = {step->pos, "the source " + quoted(found->name()) + " is an instance without a \"source\""};
          return false;
        }
        step = next->second;
      }
    }
    std::string problem;
    if (!store.setSource(*source.instance, *found, &problem)) {
      error = {step->pos, "the source " + problem};
      return false;
    }
  }
  return true;
}

}  // namespace vexo
