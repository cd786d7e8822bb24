// The scan that chooses the export's root items and gathers what later
// phases need (masks, deformer groups, replicators).
#pragma once

#include <vector>

#include "host/scene.h"
#include "item_types.h"
#include "plugin/export_options.h"
#include "plugin/gltf_log_msg.h"

struct SceneScan {
  std::vector<CVxUser_Item> rootItems;
  std::vector<CVxUser_Item> masks;
  std::vector<CVxUser_Item> deformGroups;
  std::vector<CVxUser_Item> replicators;
  // The "enable" channel of the first "morphDeform" item that has one.
  int morphEnableChannel = -1;
};

SceneScan scanScene(const CVxUser_Scene& scene, const ExportOptions& options, const ItemTypes& types,
                    GltfLogMsg& log);
