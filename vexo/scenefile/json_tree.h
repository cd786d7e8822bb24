// A JSON value tree that remembers where each value and key starts in the text.
//
// Accepts JSON with // and /* */ comments and trailing commas, since scene
// files are written by hand.
//
// Values that can be huge (a mesh's numbers) may be left raw: the tree then
// only says where their text lies, and its owner parses them its own leaner
// way, using findJsonValue to place its messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vexo {

// 1-based line and column; columns count characters, not bytes.
struct TextPos {
  unsigned line = 0;
  unsigned column = 0;
};

struct JsonMember;

struct JsonNode {
  enum class Kind { Null, Bool, Integer, Float, String, Array, Object, Raw };

  Kind kind = Kind::Null;
  TextPos pos;
  bool boolean = false;
  std::int64_t integer = 0;  // Kind::Integer
  double number = 0.0;       // Kind::Integer and Kind::Float
  std::string text;          // Kind::String
  std::vector<JsonNode> elements;    // Kind::Array
  std::vector<JsonMember> members;   // Kind::Object, in text order
  std::size_t rawBegin = 0, rawEnd = 0;  // Kind::Raw: the value's bytes in the parsed text

  bool isNumber() const { return kind == Kind::Integer || kind == Kind::Float; }
};

struct JsonMember {
  std::string key;
  TextPos keyPos;
  JsonNode value;
};

// "null", "a boolean", "an integer", "a number", "a string", "an array", "an object" or "a value".
const char* jsonKindName(JsonNode::Kind kind);

struct JsonError {
  TextPos pos;
  std::string message;
};

// Asked at each key whether the member's value stays raw. `open` holds the
// containers around the key, outermost first, with their members and
// elements so far; the last one is the object the key belongs to.
using JsonRawRule = std::function<bool(const std::vector<JsonNode>& open, std::string_view key)>;

// Offered each raw value that opens with '{' or '[', at the offset of that
// bracket, before the parser goes through it. Returns the offset just past
// the matching closing bracket when it has taken the whole value (which must
// then be valid JSON), and the parser skips its inside; npos to leave the
// value to the parser.
using JsonRawReader = std::function<std::size_t(std::size_t begin)>;

// Parses a whole document. On failure `error` tells where and what, and `root` is unspecified.
bool parseJson(std::string_view text, JsonNode& root, JsonError& error, const JsonRawRule& raw = nullptr,
               const JsonRawReader& rawReader = nullptr);

// Where a value starts in `text`, which must parse (as the raw text of a
// value does). Each step of `path` is an element index in an array or a
// member index (in text order) in an object; with `key`, the last step's key
// is wanted instead of its value. npos when there is no such value.
std::size_t findJsonValue(std::string_view text, const std::vector<std::size_t>& path, bool key = false);

// The line and column of a byte offset in `text`.
TextPos textPosition(std::string_view text, std::size_t offset);

}  // namespace vexo
