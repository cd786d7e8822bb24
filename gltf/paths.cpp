#include "gltf/paths.h"

#include <cstring>

namespace gltf {

namespace {
const char* const kSeparators = "/\\";
}

std::string pathStem(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  return dot == std::string::npos ? path : path.substr(0, dot);
}

std::string pathFileName(const std::string& path) {
  const std::size_t separator = path.find_last_of(kSeparators);
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

std::string pathFolder(const std::string& path) {
  const std::size_t separator = path.find_last_of(kSeparators);
  return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

std::string uriFromFileName(const std::string& name) {
  // Unreserved characters and the sub-delimiters a path segment may hold.
  static const char* const kKept = "-._~!$&'()*+,;=@";
  static const char* const kHex = "0123456789ABCDEF";
  std::string uri;
  uri.reserve(name.size());
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool alnum = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
    if (alnum || (byte != 0 && std::strchr(kKept, byte))) {
      uri += c;
    } else {
      uri += '%';
      uri += kHex[byte >> 4];
      uri += kHex[byte & 15];
    }
  }
  return uri;
}

}  // namespace gltf
