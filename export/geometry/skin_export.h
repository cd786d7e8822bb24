// The deformer phase: one glTF skin per deformed mesh item, with a joint and
// an inverse bind matrix per weight-map influence and JOINTS_0/WEIGHTS_0 on
// the mesh's primitives.
#pragma once

#include "core/export_context.h"
#include "mesh_export.h"

// Skins every entry of the context's deformer list, in list order. The
// meshes must be those the node walk exported.
void exportSkins(ExportContext& context, const MeshExporter& meshes);

// Creates the skin of one mesh item; true in every case, the export goes on.
bool createDeformersForMesh(ExportContext& context, const MeshExporter& meshes, const DeformerEntry& entry);
