#include "scenefile/json_tree.h"

#include <rapidjson/error/error.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

#include "scenefile/json_allocator.h"
#include "scenefile/json_number.h"

namespace vexo {
namespace {

// Deep enough for any scene, shallow enough that the tree's recursive
// destruction cannot exhaust the stack.
constexpr std::size_t kMaxDepth = 512;
constexpr const char* kTooDeep = "values nested too deeply";
// The deepest nesting inside a value a JsonRawReader takes whole.
constexpr std::size_t kRawReaderDepth = 16;

// Numbers come as text and are converted here: the reader's own conversion
// is not correctly rounded, and its full-precision one misreads some inputs.
constexpr unsigned kParseFlags = rapidjson::kParseCommentsFlag | rapidjson::kParseTrailingCommasFlag |
                                 rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseValidateEncodingFlag;

constexpr const char* kTooBig = "number beyond the largest double (about 1.8e308)";

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Maps byte offsets to line and column in O(log n) each, however long the
// lines: the characters before every block of bytes are counted once.
class TextPositions {
 public:
  explicit TextPositions(std::string_view text) : text_(text) {
    lineStarts_.push_back(0);
    for (const char* p = text.data(); (p = static_cast<const char*>(std::memchr(p, '\n', text.size() - (p - text.data()))));)
      lineStarts_.push_back(static_cast<std::size_t>(++p - text.data()));
    std::size_t characters = 0;
    blockCharacters_.reserve(text.size() / kBlock + 1);
    for (std::size_t block = 0; block < text.size(); block += kBlock) {
      blockCharacters_.push_back(characters);
      // A plain loop over one block, which the compiler turns into vector code.
      const std::size_t end = std::min(text.size(), block + kBlock);
      unsigned inBlock = 0;
      for (std::size_t i = block; i < end; ++i) inBlock += !isContinuationByte(text[i]);
      characters += inBlock;
    }
  }

  TextPos at(std::size_t offset) const {
    offset = std::min(offset, text_.size());
    auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
    std::size_t line = static_cast<std::size_t>(next - lineStarts_.begin()) - 1;
    const std::size_t column = charactersBefore(offset) - charactersBefore(lineStarts_[line]) + 1;
    return {static_cast<unsigned>(line + 1), static_cast<unsigned>(column)};
  }

 private:
  static constexpr std::size_t kBlock = 256;

  std::size_t charactersBefore(std::size_t offset) const {
    if (blockCharacters_.empty()) return 0;
    const std::size_t block = std::min(offset / kBlock, blockCharacters_.size() - 1);
    std::size_t characters = blockCharacters_[block];
    for (std::size_t i = block * kBlock; i < offset; ++i) characters += !isContinuationByte(text_[i]);
    return characters;
  }

  std::string_view text_;
  std::vector<std::size_t> lineStarts_;
  std::vector<std::size_t> blockCharacters_;  // characters before each block's first byte
};

// What a decoded string may not hold: a zero character, which names and texts
// handed on as C strings cannot carry, and a lone surrogate escape, which
// decodes to bytes that are not UTF-8 (0xED then 0xA0 to 0xBF). Null when it is fine.
const char* stringProblem(const char* s, std::size_t length) {
  if (std::memchr(s, '\0', length)) return "a string holds the character U+0000 (\\u0000), which names and texts cannot carry";
  for (const char* p = s; (p = static_cast<const char*>(std::memchr(p, '\xED', length - (p - s))));) {
    ++p;
    if (p < s + length && (static_cast<unsigned char>(*p) & 0xE0) == 0xA0)
      return "a string holds a \\u escape of a lone surrogate (\\uD800 to \\uDFFF without its pair)";
  }
  return nullptr;
}

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

// Where a container the reader has just closed ends. After a trailing comma
// the reader reports the close before it takes the bracket, so the position
// is still at the bracket, which follows filler there rather than a value.
std::size_t closedEnd(std::string_view text, std::size_t tell) {
  const auto isClose = [](char c) { return c == '}' || c == ']'; };
  if (tell < text.size() && isClose(text[tell]) && (tell == 0 || !isClose(text[tell - 1]))) ++tell;
  return tell;
}

// Skips white space and comments as the reader does between tokens; npos at
// a '/' that starts no closed comment.
std::size_t skipSpace(std::string_view text, std::size_t i) {
  while (i < text.size()) {
    const char c = text[i];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      ++i;
    } else if (text.compare(i, 2, "//") == 0) {
      i = text.find('\n', i);
      if (i == std::string_view::npos) return text.size();
    } else if (text.compare(i, 2, "/*") == 0) {
      i = text.find("*/", i + 2);
      if (i == std::string_view::npos) return i;
      i += 2;
    } else if (c == '/') {
      return std::string_view::npos;
    } else {
      break;
    }
  }
  return i;
}

// A string stream the reader uses in place rather than through a local copy,
// so that its position is current whenever a handler runs. Past the end it
// gives zeros, which the reader takes for the end: a character cut short at
// the end of the text is never read beyond it.
class TextStream {
 public:
  using Ch = char;
  explicit TextStream(std::string_view text) : begin_(text.data()), cur_(text.data()), end_(text.data() + text.size()) {}
  Ch Peek() const { return cur_ < end_ ? *cur_ : '\0'; }
  Ch Take() {
    if (cur_ >= end_) return '\0';
    const Ch c = *cur_++;
    if (cur_ == skipFrom_) cur_ = skipTo_;
    return c;
  }
  // Once the opening bracket at `open` is taken, goes on at the closing one
  // at `close`: the reader sees an empty array or object.
  void skipInside(std::size_t open, std::size_t close) {
    skipFrom_ = begin_ + open + 1;
    skipTo_ = begin_ + close;
  }
  std::size_t Tell() const { return static_cast<std::size_t>(cur_ - begin_); }
  Ch* PutBegin() { return nullptr; }
  void Put(Ch) {}
  void Flush() {}
  std::size_t PutEnd(Ch*) { return 0; }

 private:
  const char* begin_;
  const char* cur_;
  const char* end_;
  const char* skipFrom_ = nullptr;
  const char* skipTo_ = nullptr;
};

// Builds the tree from the reader's events. Each event comes right after the
// reader consumed its token, so a value starts at the first character after
// the previous event that is not filler.
class TreeBuilder {
 public:
  TreeBuilder(std::string_view text, TextStream& stream, const TextPositions& positions, const JsonRawRule& raw,
              const JsonRawReader& rawReader)
      : text_(text), stream_(stream), positions_(positions), rawRule_(raw), rawReader_(rawReader) {}

  bool Null() { return inRaw_ ? rawScalar() : add(JsonNode{}); }
  bool Bool(bool b) {
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::Bool;
    node.boolean = b;
    return add(std::move(node));
  }
  // Numbers come as text (kParseNumbersAsStringsFlag), never through these.
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(std::int64_t) { return false; }
  bool Uint64(std::uint64_t) { return false; }
  bool Double(double) { return false; }
  bool RawNumber(const char* s, rapidjson::SizeType length, bool) {
    const std::string_view text(s, length);
    JsonNumber number;
    if (inRaw_) {
      // Raw numbers are converted by their owner; here they are only checked.
      if (jsonNumberMayOverflow(text) && !readJsonNumber(text, number)) return refuse(kTooBig);
      return rawScalar();
    }
    if (!readJsonNumber(text, number)) return refuse(kTooBig);
    JsonNode node;
    node.kind = number.isInteger ? JsonNode::Kind::Integer : JsonNode::Kind::Float;
    node.integer = number.integer;
    node.number = number.number;
    return add(std::move(node));
  }
  bool String(const char* s, rapidjson::SizeType length, bool) {
    if (const char* problem = stringProblem(s, length)) return refuse(problem);
    if (inRaw_) return rawScalar();
    JsonNode node;
    node.kind = JsonNode::Kind::String;
    node.text.assign(s, length);
    return add(std::move(node));
  }
  bool StartObject() { return inRaw_ ? rawOpen() : open(JsonNode::Kind::Object); }
  bool Key(const char* s, rapidjson::SizeType length, bool) {
    if (const char* problem = stringProblem(s, length)) return refuse(problem);
    if (inRaw_) {
      lastEnd_ = stream_.Tell();
      return true;
    }
    JsonMember member;
    member.key.assign(s, length);
    member.keyPos = start();
    stack_.back().members.push_back(std::move(member));
    inRaw_ = rawRule_ && rawRule_(stack_, stack_.back().members.back().key);
    if (inRaw_ && rawReader_ && stack_.size() + kRawReaderDepth <= kMaxDepth) offerRaw();
    return true;
  }
  bool EndObject(rapidjson::SizeType) { return inRaw_ ? rawClose() : close(); }
  bool StartArray() { return inRaw_ ? rawOpen() : open(JsonNode::Kind::Array); }
  bool EndArray(rapidjson::SizeType) { return inRaw_ ? rawClose() : close(); }

  JsonNode& root() { return root_; }
  // Why the builder stopped the reader.
  const JsonError& failure() const { return failure_; }

 private:
  // Where the value or key the reader just took starts.
  TextPos here() const { return positions_.at(skipFiller(text_, lastEnd_)); }
  bool refuse(const char* message) {
    failure_ = {here(), message};
    return false;
  }

  TextPos start() {
    TextPos pos = positions_.at(skipFiller(text_, lastEnd_));
    lastEnd_ = stream_.Tell();
    return pos;
  }

  // Offers the raw value after the key just taken to the raw reader; when
  // it takes the value, the reader skips all but its brackets.
  void offerRaw() {
    const std::size_t colon = skipSpace(text_, stream_.Tell());
    if (colon >= text_.size() || text_[colon] != ':') return;
    const std::size_t open = skipSpace(text_, colon + 1);
    if (open >= text_.size() || (text_[open] != '{' && text_[open] != '[')) return;
    const std::size_t end = rawReader_(open);
    if (end != std::string_view::npos) stream_.skipInside(open, end - 1);
  }

  // A raw value's events only count its depth; its node is placed when it ends.
  void beginRaw() {
    raw_ = JsonNode{};
    raw_.kind = JsonNode::Kind::Raw;
    raw_.rawBegin = skipFiller(text_, lastEnd_);
    raw_.pos = positions_.at(raw_.rawBegin);
  }
  bool endRaw(std::size_t end) {
    inRaw_ = false;
    lastEnd_ = raw_.rawEnd = end;
    return place(std::move(raw_));
  }
  // Inside a raw value each event still moves `lastEnd_`, so that a refusal can point at its value.
  bool rawScalar() {
    if (rawDepth_ > 0) {
      lastEnd_ = stream_.Tell();
      return true;
    }
    beginRaw();
    return endRaw(stream_.Tell());
  }
  bool rawOpen() {
    if (rawDepth_ == 0) beginRaw();
    if (stack_.size() + ++rawDepth_ > kMaxDepth) return refuse(kTooDeep);
    lastEnd_ = stream_.Tell();
    return true;
  }
  bool rawClose() {
    if (--rawDepth_ > 0) {
      lastEnd_ = closedEnd(text_, stream_.Tell());
      return true;
    }
    return endRaw(closedEnd(text_, stream_.Tell()));
  }

  bool open(JsonNode::Kind kind) {
    JsonNode node;
    node.kind = kind;
    if (stack_.size() >= kMaxDepth) return refuse(kTooDeep);
    node.pos = start();
    stack_.push_back(std::move(node));
    return true;
  }

  bool close() {
    lastEnd_ = closedEnd(text_, stream_.Tell());
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
  TextStream& stream_;
  const TextPositions& positions_;
  const JsonRawRule& rawRule_;
  const JsonRawReader& rawReader_;
  bool inRaw_ = false;
  std::size_t rawDepth_ = 0;
  JsonNode raw_;
  std::size_t lastEnd_ = 0;
  std::vector<JsonNode> stack_;
  JsonNode root_;
  JsonError failure_;
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
    lastEnd_ = closedEnd(text_, stream_.Tell());
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
      {kParseErrorNumberTooBig, kTooBig},
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

bool parseJson(std::string_view text, JsonNode& root, JsonError& error, const JsonRawRule& raw,
               const JsonRawReader& rawReader) {
  TextPositions positions(text);
  // The reader takes a zero byte for the end of the text.
  if (const void* zero = std::memchr(text.data(), '\0', text.size())) {
    error = {positions.at(static_cast<std::size_t>(static_cast<const char*>(zero) - text.data())), "zero byte in the text"};
    return false;
  }
  TextStream stream(text);
  TreeBuilder builder(text, stream, positions, raw, rawReader);
  JsonReader reader;
  rapidjson::ParseResult result = reader.Parse<kParseFlags>(stream, builder);
  if (result) {
    root = std::move(builder.root());
    return true;
  }
  if (result.Code() == rapidjson::kParseErrorTermination)
    error = builder.failure();
  else
    error = {positions.at(result.Offset()), syntaxMessage(result.Code())};
  return false;
}

std::size_t findJsonValue(std::string_view text, const std::vector<std::size_t>& path, bool key) {
  if (key && path.empty()) return std::string_view::npos;
  TextStream stream(text);
  ValueFinder finder(text, stream, path, key);
  JsonReader reader;
  reader.Parse<kParseFlags>(stream, finder);
  return finder.offset();
}

TextPos textPosition(std::string_view text, std::size_t offset) { return TextPositions(text).at(offset); }

}  // namespace vexo
