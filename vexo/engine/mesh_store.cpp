#include "engine/mesh_store.h"

#include "mesh/mesh_data.h"

namespace vexo {

MeshStore::MeshStore(const TypeRegistry& types)
    : types_(types),
      meshType_(types.find("mesh")),
      triSurfType_(types.find("triSurf")),
      instanceType_(types.find("meshInst")) {}

MeshStore::~MeshStore() = default;

bool MeshStore::derives(const Item& item, TypeCode base) const {
  return base != kNoType && types_.derives(item.typeCode(), base);
}

bool MeshStore::ownsMesh(const Item& item) const {
  return derives(item, meshType_) || derives(item, triSurfType_);
}

bool MeshStore::isInstance(const Item& item) const { return derives(item, instanceType_); }

MeshData* MeshStore::ownMesh(const Item& item) {
  if (!ownsMesh(item)) return nullptr;
  std::unique_ptr<MeshData>& mesh = meshes_[&item];
  if (!mesh) mesh = std::make_unique<MeshData>(item.ident());
  return mesh.get();
}

bool MeshStore::setSource(const Item& instance, const Item& source, std::string* problem) {
  auto refuse = [problem](std::string why) {
    if (problem) *problem = std::move(why);
    return false;
  };
  if (!isInstance(instance)) {
    return refuse("\"" + instance.name() + "\" is a \"" + instance.type().name + "\", not a mesh instance");
  }
  if (!ownsMesh(source)) {
    return refuse("\"" + source.name() + "\" is a \"" + source.type().name +
                  "\"; an instance shows the mesh of a \"mesh\" or \"triSurf\" item");
  }
  sources_[&instance] = &source;
  return true;
}

const Item* MeshStore::source(const Item& instance) const {
  auto it = sources_.find(&instance);
  return it == sources_.end() ? nullptr : it->second;
}

MeshData* MeshStore::meshOf(const Item& item) {
  if (const Item* from = source(item)) return ownMesh(*from);
  return ownMesh(item);
}

}  // namespace vexo
