// The host's persisted configuration: named sections of named scalar values,
// kept in a JSON file the user owns and rewritten whole, atomically.
//
//   { "loaderOptions.gltf": { "loadGeometry": true, "importUnits": 4, ... }, ... }
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "scenefile/json_tree.h"

namespace vexo {

struct ConfigValue {
  enum class Kind { Boolean, Integer, Float, Text };
  Kind kind = Kind::Integer;
  bool boolean = false;      // Kind::Boolean
  std::int64_t integer = 0;  // Kind::Integer
  double number = 0.0;       // Kind::Integer and Kind::Float
  std::string text;          // Kind::Text
};

struct ConfigEntry {
  std::string name;
  ConfigValue value;
  TextPos pos;  // where the value was read; line 0 for a value set since
};

struct ConfigSection {
  std::string key;
  std::vector<ConfigEntry> entries;  // in file order
};

// The configuration file: $VEXO_CONFIG_HOME/config.json when that variable is
// set and not empty, else $XDG_CONFIG_HOME/vexo/config.json, else
// $HOME/.config/vexo/config.json. Empty, with `error` set, when none applies.
std::string configFilePath(std::string& error);

class Configuration {
 public:
  // Reads `path`; a missing file is an empty configuration. False, with
  // `error` as "FILE:LINE:COLUMN: what", for a file that is not a JSON
  // object of objects of booleans, numbers and strings.
  bool read(const std::string& path, std::string& error);
  // Parses `text` as read() parses a file, `fileName` naming it in errors.
  bool parse(std::string_view text, const std::string& fileName, std::string& error);

  const std::string& fileName() const { return fileName_; }
  const std::vector<ConfigSection>& sections() const { return sections_; }
  // Null when there is no such section.
  const ConfigSection* find(std::string_view key) const;
  // Replaces the section's entries, or appends the section.
  void replace(const std::string& key, std::vector<ConfigEntry> entries);

  // The file's text: every section and entry in order, two-space indents.
  std::string text() const;
  // Writes text() to `path` through a temporary file beside it, synced and
  // renamed into place, creating missing folders; the old file stays whole on
  // any failure. False with `error` naming the file and the reason.
  bool write(const std::string& path, std::string& error) const;

 private:
  std::string fileName_;
  std::vector<ConfigSection> sections_;
};

}  // namespace vexo
