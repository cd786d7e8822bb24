// How output paths are derived from the destination the user chose.
#pragma once

#include <string>

namespace gltf {

// The path with everything from its last "." removed, wherever that dot is:
// "a.b/scene" gives "a". A path without a dot is its own stem.
std::string pathStem(const std::string& path);
// The part after the last '/' or '\\': the bare file name.
std::string pathFileName(const std::string& path);
// The part up to and including the last '/' or '\\'; empty for a bare name.
std::string pathFolder(const std::string& path);
// A file name as a relative URI: bytes that a URI cannot carry as they are
// (space, '%', '#', '?', ':', non-ASCII, ...) are percent-encoded.
std::string uriFromFileName(const std::string& name);

}  // namespace gltf
