// Wrappers over the host's deformers: scene graphs, the influence test and
// the (point, weight) pairs of a mesh's weight maps.
#pragma once

#include <string>
#include <vector>

#include "mesh.h"
#include "scene.h"
#include "vexo/vx_deform.h"

// Graph names, spelled once.
inline constexpr const char* kVxGraphDeformers = "deformers";
inline constexpr const char* kVxGraphDeformTarget = "deformTarget";

// One item's links in a named scene graph; releases the host's list.
class CVxItemGraph {
 public:
  CVxItemGraph() = default;
  CVxItemGraph(const CVxUser_Scene& scene, const CVxUser_Item& item, const char* graph);
  ~CVxItemGraph();
  CVxItemGraph(const CVxItemGraph&) = delete;
  CVxItemGraph& operator=(const CVxItemGraph&) = delete;

  // False when the item has no links in that graph.
  bool test() const { return graph_ != nullptr; }
  unsigned count() const { return graph_ ? graph_->LinkCount() : 0; }
  // False, `item` untouched, when the host cannot give that link.
  bool link(unsigned index, CVxUser_Item& item) const;

 private:
  IVxItemGraph* graph_ = nullptr;
};

class CVxDeformService {
 public:
  explicit CVxDeformService(const CVxUser_Scene& scene);
  bool test() const { return service_ != nullptr; }
  // The host's influence test: the item binds a joint to a mesh.
  bool isInfluence(const CVxUser_Item& item) const;
  // The joint locator an influence binds; empty when none.
  CVxUser_Item joint(const CVxUser_Item& influence) const;

 private:
  IVxDeformService* service_ = nullptr;
};

struct CVxPointWeight {
  unsigned point;
  float weight;
};

// The (point, weight) pairs of the mesh's weight map ("WGHT") of that name,
// in point order; false when the mesh has no such map or cannot list it.
bool readWeightMap(const CVxMesh& mesh, const std::string& name, std::vector<CVxPointWeight>& pairs);
