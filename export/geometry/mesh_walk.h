// Feeds a host mesh's polygons to a MeshBuilder, reading each corner's
// normal and map values from the host.
#pragma once

#include "host/mesh.h"
#include "mesh_builder.h"
#include "mesh_maps.h"

struct MeshWalk {
  bool complete = false;          // every polygon was visited
  unsigned polygonsVisited = 0;   // including the one the walk stopped at
  unsigned failedTriangles = 0;   // triangles the host did not give
};

MeshWalk walkMesh(const CVxMesh& mesh, const MeshMaps& maps, MeshBuilder& builder);
