#include "test_util.h"

#include <stdlib.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "gltf_test-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> ScratchDir::list() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

GltfSettings settingsFor(bool separateFiles, GltfReporter* log, bool indices32, int skinnedMeshInWS) {
  return GltfSettings{separateFiles ? 1 : 0, indices32 ? 1 : 0, skinnedMeshInWS, log};
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::uint32_t le32(const std::string& bytes, std::size_t offset) {
  std::uint32_t value = 0;
  for (int i = 3; i >= 0; --i) value = (value << 8) | static_cast<unsigned char>(bytes.at(offset + i));
  return value;
}

float floatAt(const std::string& bytes, std::size_t offset) {
  const std::uint32_t bits = le32(bytes, offset);
  float value;
  std::memcpy(&value, &bits, 4);
  return value;
}

rapidjson::Document parseJson(const std::string& text) {
  rapidjson::Document json;
  json.Parse<rapidjson::kParseFullPrecisionFlag>(text.c_str(), text.size());
  return json;
}

std::string glbJson(const std::string& glb) { return glb.substr(20, le32(glb, 12)); }

std::string glbBin(const std::string& glb) {
  const std::size_t bin = 20 + le32(glb, 12);
  return glb.substr(bin + 8, le32(glb, bin));
}

std::string tinyPng() {
  static const unsigned char kPng[] = {
      0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
      0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1f, 0x15, 0xc4, 0x89, 0x00, 0x00, 0x00,
      0x0d, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9c, 0x63, 0xf8, 0xcf, 0xc0, 0xf0, 0x1f, 0x00, 0x05, 0x00, 0x01, 0xff,
      0x89, 0x99, 0x3d, 0x1d, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};
  return std::string(reinterpret_cast<const char*>(kPng), sizeof kPng);
}

std::vector<double> translation(double x, double y, double z) {
  return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}
