// Vexo SDK: deformers and the scene graphs that tie them to meshes.
//
// A deformer item changes the points of a mesh. The deformer the SDK knows
// in detail is the influence: it binds one joint locator to a mesh through a
// weight map ("WGHT") of that mesh. Its integer channel "type" says what
// drives it (1: a weight map) and its text channel "name" names the map.
//
// Items are tied together by named scene graphs, each a list of links from
// one item to others, in order:
//   "deformers"    a mesh item's deformers, in the order they apply;
//   "deformTarget" an influence's mesh, when the influence names it itself;
//   "deformJoint"  the joint locator an influence binds.
#pragma once

#include "vexo/vx_result.h"
#include "vexo/vx_scene.h"

// One item's links in one scene graph. The caller releases it.
class IVxItemGraph {
 public:
  virtual unsigned LinkCount() = 0;
  // VXR_OUTOFBOUNDS past the end.
  virtual VxResult LinkByIndex(unsigned index, IVxItem** item) = 0;
  virtual void Release() = 0;

 protected:
  ~IVxItemGraph() = default;
};

class IVxDeformService {
 public:
  // The item's links in the named graph; VXR_NOTFOUND when it has none there.
  virtual VxResult ItemGraph(IVxItem* item, const char* graph, IVxItemGraph** links) = 0;
  // VXR_OK when the item is an influence that binds a joint, VXR_FALSE when not.
  virtual VxResult TestInfluence(IVxItem* item) = 0;
  // The joint locator an influence binds; VXR_NOTFOUND when it binds none.
  virtual VxResult InfluenceJoint(IVxItem* item, IVxItem** joint) = 0;

 protected:
  ~IVxDeformService() = default;
};
