// What the phases of one save share: the saver's settings, log, document
// and scene. The saver owns it; each phase reads and fills its part.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "export_options.h"
#include "gltf/document.h"
#include "gltf_log_msg.h"
#include "host/scene.h"
#include "scene/item_types.h"
#include "scene/node_walk.h"
#include "scene/scene_scan.h"

struct ExportState {
  GltfLogMsg log;
  bool initialised = false;
  std::int32_t outputForm = 0;  // 0 one ".glb", 1 ".gltf" with ".bin"
  ExportOptions options;
  std::string destination;
  std::unique_ptr<GltfDocument> document;
  std::uint32_t documentRoot = GltfDocument::kNone;
  CVxUser_Scene scene;
  // The scene's current evaluation ("edit" at the current time), opened once.
  CVxChannelRead edit;
  ItemTypes types{};
  SceneScan scan;
  ItemNodeMap itemNodes;
  // The render resolution, read when cameras are exported.
  std::int32_t renderWidth = 720;
  std::int32_t renderHeight = 480;
};
