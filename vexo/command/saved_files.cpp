#include "command/saved_files.h"

#include <sys/stat.h>

#include <fstream>
#include <iterator>

#include <rapidjson/document.h>

#include "engine/scene.h"
#include "services/user_values.h"

namespace vexo {
namespace {

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The savers' own rules for output names: the stem ends at the last '.'
// anywhere in the path, and a folder ends at the last '/' or '\\'.
std::string stemOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? path : path.substr(0, dot);
}

std::string folderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

void addIfPresent(const std::string& path, std::vector<SavedFile>& files) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode)) return;
  for (const SavedFile& file : files)
    if (file.path == path) return;
  files.push_back({path, S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size) : 0});
}

// The relative file "uri"s of one top-level array of the ".gltf".
void addUris(const rapidjson::Document& json, const char* array, const std::string& folder,
             std::vector<SavedFile>& files) {
  const auto found = json.FindMember(array);
  if (found == json.MemberEnd() || !found->value.IsArray()) return;
  for (const auto& entry : found->value.GetArray()) {
    if (!entry.IsObject()) continue;
    const auto uri = entry.FindMember("uri");
    if (uri == entry.MemberEnd() || !uri->value.IsString()) continue;
    const std::string_view text(uri->value.GetString(), uri->value.GetStringLength());
    // Bare file names are percent-encoded, so a ':' marks a scheme (data:, http:).
    if (text.empty() || text.find(':') != std::string_view::npos) continue;
    addIfPresent(folder + percentDecode(text), files);
  }
}

}  // namespace

bool exportsEmptySelection(const UserValues& values, const Scene& scene) {
  const UserValue* type = values.find(kExportTypeKey);
  const bool selectedItems = !type || type->kind != UserValue::Kind::Integer || type->integer == 1;
  return selectedItems && scene.selection().empty();
}

std::vector<SavedFile> savedFiles(std::string_view server, const std::string& destination) {
  std::vector<SavedFile> files;
  if (server != "gltf.gltf") {
    addIfPresent(destination, files);
    return files;
  }
  const std::string jsonPath = stemOf(destination) + ".gltf";
  addIfPresent(jsonPath, files);
  if (files.empty()) return files;

  struct stat info {};
  if (::stat(jsonPath.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return files;
  std::ifstream in(jsonPath, std::ios::binary);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  rapidjson::Document json;
  if (json.Parse(text.data(), text.size()).HasParseError() || !json.IsObject()) return files;
  const std::string folder = folderOf(jsonPath);
  addUris(json, "buffers", folder, files);
  addUris(json, "images", folder, files);
  return files;
}

std::string percentDecode(std::string_view uri) {
  std::string bytes;
  bytes.reserve(uri.size());
  for (std::size_t i = 0; i < uri.size(); ++i) {
    if (uri[i] == '%' && i + 2 < uri.size() && hexDigit(uri[i + 1]) >= 0 && hexDigit(uri[i + 2]) >= 0) {
      bytes += static_cast<char>(hexDigit(uri[i + 1]) * 16 + hexDigit(uri[i + 2]));
      i += 2;
    } else {
      bytes += uri[i];
    }
  }
  return bytes;
}

}  // namespace vexo
