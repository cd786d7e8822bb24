#include "gltf_reader.h"

#include <rapidjson/document.h>

#include <cstdio>

namespace {

std::vector<double> numbers(const rapidjson::Value& array) {
  std::vector<double> values;
  if (!array.IsArray()) return values;
  values.reserve(array.Size());
  for (const auto& value : array.GetArray()) values.push_back(value.GetDouble());
  return values;
}

std::array<double, 16> matrix(const rapidjson::Value& array) {
  std::array<double, 16> m{};
  const std::vector<double> values = numbers(array);
  for (std::size_t i = 0; i < 16 && i < values.size(); ++i) m[i] = values[i];
  return m;
}

int indexOrNone(const rapidjson::Value& value) { return value.IsInt() ? value.GetInt() : -1; }

}  // namespace

const ReadNode* ReadGltf::node(const std::string& name) const {
  for (const ReadNode& node : nodes)
    if (node.name == name) return &node;
  return nullptr;
}

std::vector<std::string> ReadGltf::nodeNames() const {
  std::vector<std::string> names;
  for (const ReadNode& node : nodes) names.push_back(node.name);
  return names;
}

bool readGltf(const std::string& path, ReadGltf& gltf, std::string& problem) {
  const std::string command = "node '" GLTFIO_READER_SCRIPT "' '" + path + "' 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) {
    problem = "cannot run node";
    return false;
  }
  std::string text;
  char buffer[65536];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) text.append(buffer, n);
  const int status = pclose(pipe);
  rapidjson::Document json;
  if (status != 0 || json.Parse(text.c_str()).HasParseError() || !json.IsObject()) {
    problem = "the reader failed (run scripts/setup.sh --test to install it): " + text.substr(0, 2000);
    return false;
  }

  for (const auto& in : json["nodes"].GetArray()) {
    ReadNode node;
    node.name = in["name"].GetString();
    node.world = matrix(in["world"]);
    node.local = matrix(in["local"]);
    node.parent = in["parent"].IsString() ? in["parent"].GetString() : "";
    for (const auto& child : in["children"].GetArray()) node.children.push_back(child.GetString());
    node.mesh = indexOrNone(in["mesh"]);
    node.camera = indexOrNone(in["camera"]);
    node.skin = indexOrNone(in["skin"]);
    gltf.nodes.push_back(std::move(node));
  }
  for (const auto& scene : json["scenes"].GetArray()) {
    gltf.scenes.emplace_back();
    for (const auto& name : scene.GetArray()) gltf.scenes.back().push_back(name.GetString());
  }
  for (const auto& in : json["meshes"].GetArray()) {
    ReadMesh mesh;
    for (const auto& p : in["primitives"].GetArray()) {
      ReadPrimitive primitive;
      primitive.mode = p["mode"].GetInt();
      primitive.material = indexOrNone(p["material"]);
      primitive.indices = numbers(p["indices"]);
      primitive.indexComponentType = p["indexComponentType"].IsInt() ? p["indexComponentType"].GetInt() : 0;
      for (const auto& attribute : p["attributes"].GetObject())
        primitive.attributes[attribute.name.GetString()] = numbers(attribute.value);
      mesh.primitives.push_back(std::move(primitive));
    }
    gltf.meshes.push_back(std::move(mesh));
  }
  for (const auto& in : json["skins"].GetArray()) {
    ReadSkin skin;
    skin.name = in["name"].GetString();
    for (const auto& joint : in["joints"].GetArray()) skin.joints.push_back(joint.GetString());
    skin.skeleton = in["skeleton"].IsString() ? in["skeleton"].GetString() : "";
    skin.inverseBindMatrices = numbers(in["inverseBindMatrices"]);
    gltf.skins.push_back(std::move(skin));
  }
  for (const auto& in : json["cameras"].GetArray()) {
    gltf.cameras.push_back({in["name"].GetString(), in["type"].GetString(), in["znear"].GetDouble(),
                            in["yfov"].GetDouble()});
  }
  return true;
}
