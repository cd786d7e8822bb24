#include "scenefile/json_tree.h"

#include <rapidjson/error/error.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace vexo {
namespace {

// Deep enough for any scene, shallow enough that the tree's recursive
// destruction cannot exhaust the stack.
constexpr std::size_t kMaxDepth = 512;

constexpr unsigned kParseFlags = rapidjson::kParseCommentsFlag | rapidjson::kParseTrailingCommasFlag |
                                 rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag;

// Maps byte offsets to line and column.
class TextPositions {
 public:
  explicit TextPositions(std::string_view text) : text_(text) {
    lineStarts_.push_back(0);
    for (std::size_t i = 0; i < text.size(); ++i)
      if (text[i] == '\n') lineStarts_.push_back(i + 1);
  }

  TextPos at(std::size_t offset) const {
    auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
    std::size_t line = static_cast<std::size_t>(next - lineStarts_.begin()) - 1;
    unsigned column = 1;
    for (std::size_t i = lineStarts_[line]; i < offset && i < text_.size(); ++i)
      if ((static_cast<unsigned char>(text_[i]) & 0xC0) != 0x80) ++column;  // skip UTF-8 continuation bytes
    return {static_cast<unsigned>(line + 1), column};
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> lineStarts_;
};

// Skips what can stand between two values: white space, separators and comments.
std::size_t skipFiller(std::string_view text, std::size_t i) {
  while (i < text.size()) {
    char c = text[i];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == ',' || c == ':') {
      ++i;
    } else if (text.compare(i, 2, "//") == 0) {
      i = text.find('\n', i);
      if (i == std::string_view::npos) return text.size();
    } else if (text.compare(i, 2, "/*") == 0) {
      i = text.find("*/", i + 2);
      if (i == std::string_view::npos) return text.size();
      i += 2;
    } else {
      break;
    }
  }
  return i;
}

// A string stream the reader uses in place rather than through a local copy,
// so that its position is current whenever a handler runs.
class TextStream {
 public:
  using Ch = char;
  explicit TextStream(const char* text) : begin_(text), cur_(text) {}
  Ch Peek() const { return *cur_; }
  Ch Take() { return *cur_++; }
  std::size_t Tell() const { return static_cast<std::size_t>(cur_ - begin_); }
  Ch* PutBegin() { return nullptr; }
  void Put(Ch) {}
  void Flush() {}
  std::size_t PutEnd(Ch*) { return 0; }

 private:
  const char* begin_;
  const char* cur_;
};

// Builds the tree from the reader's events. Each event comes right after the
// reader consumed its token, so a value starts at the first character after
// the previous event that is not filler.
class TreeBuilder {
 public:
  TreeBuilder(std::string_view text, const TextStream& stream, const TextPositions& positions, const JsonRawRule& raw)
      : text_(text), stream_(stream), positions_(positions), rawRule_(raw) {}

  bool Null() { return inRaw_ ? rawScalar() : add(JsonNode{}); }
  bool Bool(bool b) {
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::Bool;
    node.boolean = b;
    return add(std::move(node));
  }
  bool Int(int i) { return integer(i); }
  bool Uint(unsigned u) { return integer(u); }
  bool Int64(std::int64_t i) { return integer(i); }
  bool Uint64(std::uint64_t u) {
    if (u > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return Double(static_cast<double>(u));
    return integer(static_cast<std::int64_t>(u));
  }
  bool Double(double d) {
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::Float;
    node.number = d;
    return add(std::move(node));
  }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }  // not requested
  bool String(const char* s, rapidjson::SizeType length, bool) {
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::String;
    node.text.assign(s, length);
    return add(std::move(node));
  }
  bool StartObject() { return inRaw_ ? rawOpen() : open(JsonNode::Kind::Object); }
  bool Key(const char* s, rapidjson::SizeType length, bool) {
    if (inRaw_) return true;
    JsonMember member;
    member.key.assign(s, length);
    member.keyPos = start();
    stack_.back().members.push_back(std::move(member));
    inRaw_ = rawRule_ && rawRule_(stack_, stack_.back().members.back().key);
    return true;
  }
  bool EndObject(rapidjson::SizeType) { return inRaw_ ? rawClose() : close(); }
  bool StartArray() { return inRaw_ ? rawOpen() : open(JsonNode::Kind::Array); }
  bool EndArray(rapidjson::SizeType) { return inRaw_ ? rawClose() : close(); }

  JsonNode& root() { return root_; }
  const TextPos& tooDeepAt() const { return tooDeepAt_; }

 private:
  TextPos start() {
    TextPos pos = positions_.at(skipFiller(text_, lastEnd_));
    lastEnd_ = stream_.Tell();
    return pos;
  }

  // A raw value's events only count its depth; its node is placed when it ends.
  void beginRaw() {
    raw_ = JsonNode{};
    raw_.kind = JsonNode::Kind::Raw;
    raw_.rawBegin = skipFiller(text_, lastEnd_);
    raw_.pos = positions_.at(raw_.rawBegin);
  }
  bool endRaw() {
    inRaw_ = false;
    lastEnd_ = raw_.rawEnd = stream_.Tell();
    return place(std::move(raw_));
  }
  bool rawScalar() {
    if (rawDepth_ > 0) return true;
    beginRaw();
    return endRaw();
  }
  bool rawOpen() {
    if (rawDepth_ == 0) beginRaw();
    if (stack_.size() + ++rawDepth_ > kMaxDepth) {
      tooDeepAt_ = positions_.at(stream_.Tell() - 1);  // the bracket just taken
      return false;
    }
    return true;
  }
  bool rawClose() { return --rawDepth_ > 0 ? true : endRaw(); }

  bool integer(std::int64_t i) {
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::Integer;
    node.integer = i;
    node.number = static_cast<double>(i);
    return add(std::move(node));
  }

  bool open(JsonNode::Kind kind) {
    JsonNode node;
    node.kind = kind;
    node.pos = start();
    if (stack_.size() >= kMaxDepth) {
      tooDeepAt_ = node.pos;
      return false;
    }
    stack_.push_back(std::move(node));
    return true;
  }

  bool close() {
    lastEnd_ = stream_.Tell();
    JsonNode node = std::move(stack_.back());
    stack_.pop_back();
    return place(std::move(node));
  }

  bool add(JsonNode node) {
    node.pos = start();
    return place(std::move(node));
  }

  bool place(JsonNode node) {
    if (stack_.empty()) {
      root_ = std::move(node);
    } else if (stack_.back().kind == JsonNode::Kind::Array) {
      stack_.back().elements.push_back(std::move(node));
    } else {
      stack_.back().members.back().value = std::move(node);
    }
    return true;
  }

  std::string_view text_;
  const TextStream& stream_;
  const TextPositions& positions_;
  const JsonRawRule& rawRule_;
  bool inRaw_ = false;
  std::size_t rawDepth_ = 0;
  JsonNode raw_;
  std::size_t lastEnd_ = 0;
  std::vector<JsonNode> stack_;
  JsonNode root_;
  TextPos tooDeepAt_;
};

// Follows the reader's events with the path of the current value and stops
// at the wanted one, noting where it starts.
class ValueFinder {
 public:
  ValueFinder(std::string_view text, const TextStream& stream, const std::vector<std::size_t>& path, bool key)
      : text_(text), stream_(stream), path_(path), key_(key) {}

  bool Null() { return value(); }
  bool Bool(bool) { return value(); }
  bool Int(int) { return value(); }
  bool Uint(unsigned) { return value(); }
  bool Int64(std::int64_t) { return value(); }
  bool Uint64(std::uint64_t) { return value(); }
  bool Double(double) { return value(); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return value(); }
  bool String(const char*, rapidjson::SizeType, bool) { return value(); }
  bool StartObject() { return open(true); }
  bool Key(const char*, rapidjson::SizeType, bool) {
    Level& level = open_.back();
    level.current = level.next++;
    if (key_ && here()) return found();
    lastEnd_ = stream_.Tell();
    return true;
  }
  bool EndObject(rapidjson::SizeType) { return close(); }
  bool StartArray() { return open(false); }
  bool EndArray(rapidjson::SizeType) { return close(); }

  std::size_t offset() const { return offset_; }

 private:
  struct Level {
    bool object;
    std::size_t next = 0, current = 0;
  };

  bool here() const {
    if (open_.size() != path_.size()) return false;
    for (std::size_t i = 0; i < path_.size(); ++i)
      if (open_[i].current != path_[i]) return false;
    return true;
  }
  // Stops the reader: the wanted value or key starts after the last event.
  bool found() {
    offset_ = skipFiller(text_, lastEnd_);
    return false;
  }
  bool step() {
    if (!open_.empty() && !open_.back().object) open_.back().current = open_.back().next++;
    if (!key_ && here()) return found();
    return true;
  }
  bool value() {
    if (!step()) return false;
    lastEnd_ = stream_.Tell();
    return true;
  }
  bool open(bool object) {
    if (!step()) return false;
    lastEnd_ = stream_.Tell();
    open_.push_back({object});
    return true;
  }
  bool close() {
    open_.pop_back();
    lastEnd_ = stream_.Tell();
    return true;
  }

  std::string_view text_;
  const TextStream& stream_;
  const std::vector<std::size_t>& path_;
  bool key_;
  std::vector<Level> open_;
  std::size_t lastEnd_ = 0;
  std::size_t offset_ = std::string_view::npos;
};

const char* syntaxMessage(rapidjson::ParseErrorCode code) {
  using namespace rapidjson;
  struct Entry {
    ParseErrorCode code;
    const char* message;
  };
  static const Entry kMessages[] = {
      {kParseErrorDocumentEmpty, "the file holds no JSON value"},
      {kParseErrorDocumentRootNotSingular, "unexpected text after the end of the JSON value"},
      {kParseErrorValueInvalid, "invalid JSON value"},
      {kParseErrorObjectMissName, "expected a key in double quotes"},
      {kParseErrorObjectMissColon, "expected ':' after the key"},
      {kParseErrorObjectMissCommaOrCurlyBracket, "expected ',' or '}' after an object member"},
      {kParseErrorArrayMissCommaOrSquareBracket, "expected ',' or ']' after an array element"},
      {kParseErrorStringUnicodeEscapeInvalidHex, "invalid \\u escape in a string"},
      {kParseErrorStringUnicodeSurrogateInvalid, "invalid surrogate pair in a string"},
      {kParseErrorStringEscapeInvalid, "invalid escape in a string"},
      {kParseErrorStringMissQuotationMark, "missing closing '\"' of a string"},
      {kParseErrorStringInvalidEncoding, "invalid UTF-8 in a string"},
      {kParseErrorNumberTooBig, "number too big"},
      {kParseErrorNumberMissFraction, "missing digits after the decimal point"},
      {kParseErrorNumberMissExponent, "missing digits in the exponent"},
      {kParseErrorUnspecificSyntaxError, "unclosed comment, or a '/' that starts no comment"},
  };
  for (const Entry& entry : kMessages)
    if (entry.code == code) return entry.message;
  return "JSON syntax error";
}

}  // namespace

const char* jsonKindName(JsonNode::Kind kind) {
  static const char* const kNames[] = {"null",     "a boolean", "an integer", "a number",
                                       "a string", "an array",  "an object",  "a value"};
  return kNames[static_cast<int>(kind)];
}

bool parseJson(std::string_view text, JsonNode& root, JsonError& error, const JsonRawRule& raw) {
  // The stream needs a terminating zero, which a string_view does not promise,
  // and would take a zero byte inside the text for the end.
  std::string buffer(text);
  TextPositions positions(buffer);
  if (std::size_t zero = buffer.find('\0'); zero != std::string::npos) {
    error = {positions.at(zero), "zero byte in the text"};
    return false;
  }
  TextStream stream(buffer.c_str());
  TreeBuilder builder(buffer, stream, positions, raw);
  rapidjson::Reader reader;
  rapidjson::ParseResult result = reader.Parse<kParseFlags>(stream, builder);
  if (result) {
    root = std::move(builder.root());
    return true;
  }
  if (result.Code() == rapidjson::kParseErrorTermination) {
    error = {builder.tooDeepAt(), "values nested too deeply"};
  } else {
    error = {positions.at(result.Offset()), syntaxMessage(result.Code())};
  }
  return false;
}

std::size_t findJsonValue(std::string_view text, const std::vector<std::size_t>& path, bool key) {
  if (key && path.empty()) return std::string_view::npos;
  const std::string buffer(text);  // the stream stops at a terminating zero
  TextStream stream(buffer.c_str());
  ValueFinder finder(buffer, stream, path, key);
  rapidjson::Reader reader;
  reader.Parse<kParseFlags>(stream, finder);
  return finder.offset();
}

TextPos textPosition(std::string_view text, std::size_t offset) { return TextPositions(text).at(offset); }

}  // namespace vexo
