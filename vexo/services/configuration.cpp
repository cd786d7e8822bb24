#include "services/configuration.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

namespace vexo {
namespace {

constexpr const char* kFileName = "config.json";

std::string envValue(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string at(const std::string& fileName, TextPos pos, const std::string& message) {
  return fileName + ":" + std::to_string(pos.line) + ":" + std::to_string(pos.column) + ": " + message;
}

// False, with `error`, for a value that is no boolean, number or string.
bool readValue(const JsonNode& node, ConfigValue& value) {
  switch (node.kind) {
    case JsonNode::Kind::Bool:
      value.kind = ConfigValue::Kind::Boolean;
      value.boolean = node.boolean;
      return true;
    case JsonNode::Kind::Integer:
      value.kind = ConfigValue::Kind::Integer;
      value.integer = node.integer;
      value.number = node.number;
      return true;
    case JsonNode::Kind::Float:
      value.kind = ConfigValue::Kind::Float;
      value.number = node.number;
      return true;
    case JsonNode::Kind::String:
      value.kind = ConfigValue::Kind::Text;
      value.text = node.text;
      return true;
    default:
      return false;
  }
}

// Writes every byte or says why not.
bool writeAll(int fd, const std::string& text, int& error) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t wrote = ::write(fd, text.data() + done, text.size() - done);
    if (wrote < 0 && errno == EINTR) continue;
    if (wrote <= 0) return error = wrote < 0 ? errno : EIO, false;
    done += static_cast<std::size_t>(wrote);
  }
  return true;
}

}  // namespace

std::string configFilePath(std::string& error) {
  if (std::string own = envValue("VEXO_CONFIG_HOME"); !own.empty()) return own + "/" + kFileName;
  if (std::string xdg = envValue("XDG_CONFIG_HOME"); !xdg.empty()) return xdg + "/vexo/" + kFileName;
  if (std::string home = envValue("HOME"); !home.empty()) return home + "/.config/vexo/" + kFileName;
  error = "cannot find the configuration folder: set VEXO_CONFIG_HOME, XDG_CONFIG_HOME or HOME";
  return "";
}

bool Configuration::read(const std::string& path, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec) && !ec) {
      fileName_ = path;
      sections_.clear();
      return true;
    }
    error = path + ": cannot read the configuration: " + std::strerror(errno);
    return false;
  }
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) {
    error = path + ": cannot read the configuration";
    return false;
  }
  return parse(text.str(), path, error);
}

bool Configuration::parse(std::string_view text, const std::string& fileName, std::string& error) {
  fileName_ = fileName;
  sections_.clear();
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  JsonNode root;
  JsonError syntax;
  if (!parseJson(text, root, syntax)) return error = at(fileName, syntax.pos, syntax.message), false;
  if (root.kind != JsonNode::Kind::Object)
    return error = at(fileName, root.pos, std::string("the configuration is ") + jsonKindName(root.kind) +
                                              ", not an object of sections"),
           false;
  std::vector<ConfigSection> sections;
  for (const JsonMember& section : root.members) {
    if (section.value.kind != JsonNode::Kind::Object)
      return error = at(fileName, section.value.pos, "section \"" + section.key + "\" is " +
                                                         jsonKindName(section.value.kind) + ", not an object"),
             false;
    ConfigSection& out = sections.emplace_back();
    out.key = section.key;
    for (const JsonMember& member : section.value.members) {
      ConfigEntry entry{member.key, {}, member.value.pos};
      if (!readValue(member.value, entry.value))
        return error = at(fileName, member.value.pos, "\"" + section.key + "." + member.key + "\" is " +
                                                          jsonKindName(member.value.kind) +
                                                          "; a setting is a boolean, a number or a string"),
               false;
      out.entries.push_back(std::move(entry));
    }
  }
  sections_ = std::move(sections);
  return true;
}

const ConfigSection* Configuration::find(std::string_view key) const {
  for (const ConfigSection& section : sections_)
    if (section.key == key) return &section;
  return nullptr;
}

void Configuration::replace(const std::string& key, std::vector<ConfigEntry> entries) {
  for (ConfigSection& section : sections_)
    if (section.key == key) return void(section.entries = std::move(entries));
  sections_.push_back({key, std::move(entries)});
}

std::string Configuration::text() const {
  rapidjson::StringBuffer buffer;
  rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
  writer.SetIndent(' ', 2);
  writer.StartObject();
  for (const ConfigSection& section : sections_) {
    writer.Key(section.key.c_str(), static_cast<rapidjson::SizeType>(section.key.size()));
    writer.StartObject();
    for (const ConfigEntry& entry : section.entries) {
      writer.Key(entry.name.c_str(), static_cast<rapidjson::SizeType>(entry.name.size()));
      const ConfigValue& value = entry.value;
      switch (value.kind) {
        case ConfigValue::Kind::Boolean: writer.Bool(value.boolean); break;
        case ConfigValue::Kind::Integer: writer.Int64(value.integer); break;
        case ConfigValue::Kind::Float: writer.Double(value.number); break;
        case ConfigValue::Kind::Text:
          writer.String(value.text.c_str(), static_cast<rapidjson::SizeType>(value.text.size()));
          break;
      }
    }
    writer.EndObject();
  }
  writer.EndObject();
  return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

bool Configuration::write(const std::string& path, std::string& error) const {
  const std::filesystem::path target(path);
  std::error_code ec;
  if (target.has_parent_path()) std::filesystem::create_directories(target.parent_path(), ec);
  if (ec) return error = "cannot write " + path + ": " + ec.message(), false;

  std::string temporary = path + ".XXXXXX";
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) return error = "cannot write " + path + ": " + std::strerror(errno), false;
  int failure = 0;
  const bool wrote = writeAll(fd, text(), failure) && (::fsync(fd) == 0 || (failure = errno, false));
  if (::close(fd) != 0 && wrote) failure = errno;
  if (!wrote || failure != 0 || ::rename(temporary.c_str(), path.c_str()) != 0) {
    if (failure == 0) failure = errno;
    ::unlink(temporary.c_str());
    error = "cannot write " + path + ": " + std::strerror(failure);
    return false;
  }
  return true;
}

}  // namespace vexo
