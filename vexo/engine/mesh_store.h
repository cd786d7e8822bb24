// The meshes of a scene's items.
//
// A "mesh" or "triSurf" item (or an item of a type derived from one) owns one
// MeshData, whose ident is the item's; it starts empty and is made the first
// time it is asked for. A "meshInst" item owns none: it shows the MeshData of
// its source, so that it hands out the very same mesh and ident.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "engine/item.h"
#include "engine/item_types.h"

namespace vexo {

// Kept out of this header so that the scene's headers do not carry the mesh engine's.
class MeshData;

class MeshStore {
 public:
  // `types` must hold "mesh", "triSurf" and "meshInst" for items to have meshes.
  explicit MeshStore(const TypeRegistry& types);
  ~MeshStore();
  MeshStore(const MeshStore&) = delete;
  MeshStore& operator=(const MeshStore&) = delete;

  // True for an item that owns a mesh, and for one that shows another's.
  bool ownsMesh(const Item& item) const;
  bool isInstance(const Item& item) const;

  // The mesh an owning item holds; null for any other item.
  MeshData* ownMesh(const Item& item);
  // Makes an instance show the mesh of `source`, which must own one. False,
  // with `problem` saying why, when either item does not fit.
  bool setSource(const Item& instance, const Item& source, std::string* problem);
  // An instance's source, or null.
  const Item* source(const Item& instance) const;
  // The mesh an item shows: its own, or its source's. Null for an item that
  // has none (an instance without a source, a camera, ...).
  MeshData* meshOf(const Item& item);

 private:
  bool derives(const Item& item, TypeCode base) const;

  const TypeRegistry& types_;
  TypeCode meshType_, triSurfType_, instanceType_;
  std::unordered_map<const Item*, std::unique_ptr<MeshData>> meshes_;
  std::unordered_map<const Item*, const Item*> sources_;
};

}  // namespace vexo
