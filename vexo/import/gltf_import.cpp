#include "import/gltf_import.h"

#include "engine/item.h"

namespace vexo {

GltfImport::GltfImport(const tinygltf::Model& model, const GltfLoadOptions& options, const std::string& path,
                       const std::string& imageFolder, Scene& scene, GltfLoadResult& result)
    : model_(model), options_(options), path_(path), imageFolder_(imageFolder), scene_(scene), result_(result) {
  unitScale_ = importUnitMetres(options.importUnits) * options.globalScalingFactor;
}

bool GltfImport::run() {
  std::vector<int> roots;
  if (!checkNodeGraph(roots)) return false;
  nodeItems_.assign(model_.nodes.size(), nullptr);
  for (int root : roots)
    if (!addNode(root, nullptr)) return false;
  if (options_.loadMaterials && !addMaterials()) return false;
  if (!addSkins()) return false;
  if (options_.loadAnimation && !addAnimations()) return false;
  return true;
}

bool GltfImport::fail(const std::string& message) {
  result_.error = path_ + ": " + message;
  return false;
}

void GltfImport::warn(const std::string& message) {
  if (warned_[message]++ == 0) result_.warnings.push_back(path_ + ": " + message);
}

std::string GltfImport::freeIdent(const std::string& base) {
  return uniqueIdent(base, [this](const std::string& candidate) { return scene_.findIdent(candidate) != nullptr; });
}

void GltfImport::setChannel(Item& item, const char* channel, Value value, std::string_view action) {
  const int index = scene_.types().findChannel(item.typeCode(), channel);
  if (index >= 0) item.setValue(static_cast<std::size_t>(index), action, std::move(value));
}

std::string GltfImport::nameOr(const std::string& name, const std::string& fallback) {
  return name.empty() ? fallback : name;
}

}  // namespace vexo
