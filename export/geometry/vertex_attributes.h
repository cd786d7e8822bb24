// Turns a primitive's collected vertices into glTF vertex attributes.
#pragma once

#include <vector>

#include "gltf/document.h"
#include "host/mesh.h"
#include "mesh_builder.h"

// Every point's position, as floats, 3 per point.
std::vector<float> readPositions(const CVxMesh& mesh);

// Adds the accessors of POSITION, NORMAL, COLOR_n, TEXCOORD_n and TANGENT
// and returns the attributes in that order.
std::vector<GltfAttribute> writeVertexAttributes(GltfDocument& document, const CornerLayout& layout,
                                                 const PrimitiveBuild& build, const std::vector<float>& positions);
