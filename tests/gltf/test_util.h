// What the glTF library tests share: a recording reporter, scratch folders,
// file access, ".glb" chunk access and a small valid PNG.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rapidjson/document.h>

#include "gltf/document.h"

class RecordingReporter : public GltfReporter {
 public:
  void info(const char* text) override { lines.push_back(std::string("info: ") + text); }
  void warning(const char* text) override { lines.push_back(std::string("warning: ") + text); }
  void error(const char* text) override { lines.push_back(std::string("error: ") + text); }
  std::vector<std::string> lines;
};

// A fresh folder, removed with everything in it at the end of the test.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  // Names in the folder, sorted; shows leftover temporary files.
  std::vector<std::string> list() const;

 private:
  std::string path_;
};

GltfSettings settingsFor(bool separateFiles, GltfReporter* log, bool indices32 = false, int skinnedMeshInWS = 0);
std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);
std::uint32_t le32(const std::string& bytes, std::size_t offset);
float floatAt(const std::string& bytes, std::size_t offset);
rapidjson::Document parseJson(const std::string& text);
// The JSON chunk of a ".glb" file, padding included, and the BIN chunk's data.
std::string glbJson(const std::string& glb);
std::string glbBin(const std::string& glb);
// A 1x1 RGBA PNG, 70 bytes.
std::string tinyPng();
// The identity with a translation, row-major with the translation in 12..14.
std::vector<double> translation(double x, double y, double z);
