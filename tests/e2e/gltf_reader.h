// Reads a written file back with an independent glTF library
// (tests/reader) and gives the tests what a viewer would see.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

struct ReadNode {
  std::string name;
  std::array<double, 16> world{};  // glTF's column-major order
  std::array<double, 16> local{};
  std::string parent;  // empty for a scene root
  std::vector<std::string> children;
  int mesh = -1;
  int camera = -1;
  int skin = -1;
};

struct ReadSkin {
  std::string name;
  std::vector<std::string> joints;  // joint node names in joint order
  std::string skeleton;             // empty when none
  std::vector<double> inverseBindMatrices;  // 16 per joint, column-major
};

struct ReadPrimitive {
  int mode = 4;
  int material = -1;
  std::vector<double> indices;
  int indexComponentType = 0;
  std::map<std::string, std::vector<double>> attributes;  // flat values per semantic
};

struct ReadMesh {
  std::vector<ReadPrimitive> primitives;
};

struct ReadCamera {
  std::string name;
  std::string type;
  double znear = 0.0;
  double yfov = 0.0;
};

struct ReadGltf {
  std::vector<ReadNode> nodes;  // in file order
  std::vector<std::vector<std::string>> scenes;  // root node names per scene
  std::vector<ReadMesh> meshes;
  std::vector<ReadCamera> cameras;
  std::vector<ReadSkin> skins;

  // The first node of that name, or null.
  const ReadNode* node(const std::string& name) const;
  std::vector<std::string> nodeNames() const;
};

// False with `problem` set when the reader could not be run or the file not read.
bool readGltf(const std::string& path, ReadGltf& gltf, std::string& problem);
