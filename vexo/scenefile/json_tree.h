// A JSON value tree that remembers where each value and key starts in the text.
//
// Accepts JSON with // and /* */ comments and trailing commas, since scene
// files are written by hand.
#pragma once

#include <cstdint>
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
  enum class Kind { Null, Bool, Integer, Float, String, Array, Object };

  Kind kind = Kind::Null;
  TextPos pos;
  bool boolean = false;
  std::int64_t integer = 0;  // Kind::Integer
  double number = 0.0;       // Kind::Integer and Kind::Float
  std::string text;          // Kind::String
  std::vector<JsonNode> elements;    // Kind::Array
  std::vector<JsonMember> members;   // Kind::Object, in text order

  bool isNumber() const { return kind == Kind::Integer || kind == Kind::Float; }
};

struct JsonMember {
  std::string key;
  TextPos keyPos;
  JsonNode value;
};

// "null", "a boolean", "an integer", "a number", "a string", "an array" or "an object".
const char* jsonKindName(JsonNode::Kind kind);

struct JsonError {
  TextPos pos;
  std::string message;
};

// Parses a whole document. On failure `error` tells where and what, and `root` is unspecified.
bool parseJson(std::string_view text, JsonNode& root, JsonError& error);

}  // namespace vexo
