#include "gltf_saver.h"

#include "export/geometry/mesh_export.h"
#include "host/user_values.h"

VxResult GltfSaverBase::lastResult[2] = {VXR_OK, VXR_OK};

GltfSaverBase::GltfSaverBase(std::int32_t outputForm, VxResult* resultCell)
    : outputForm_(outputForm), resultCell_(resultCell) {}

VxResult GltfSaverBase::ss_Save(const CVxUser_Scene& scene, const char* destination) {
  state_.outputForm = outputForm_;
  state_.log.resetCounters();
  state_.destination = destination;

  if (!ss_IsRealSave()) {
    InitSaver(scene);
    return VXR_OK;
  }
  if (!state_.initialised) InitSaver(scene);

  VxResult result = VXR_OK;
  if (initStatus_ != 0) {
    // InitSaver reports no status today; the check stays for savers that will.
    state_.log.reportError("GltfSaver failed to initialize");
    result = static_cast<VxResult>(initStatus_);
  } else {
    result = RunSaver();
  }

  const std::uint32_t errors = state_.log.errors();
  const std::uint32_t warnings = state_.log.warnings();
  if (errors != 0 || warnings != 0) {
    state_.log.reportWarning("There are %d warnings and %d errors reported to event log", static_cast<int>(warnings),
                             static_cast<int>(errors));
    state_.log.resetCounters();
  }
  *resultCell_ = result;
  return result;
}

void GltfSaverBase::InitSaver(const CVxUser_Scene& scene) {
  state_.initialised = true;
  state_.log.resetLog();
  state_.log.trace("glTf v2 :: InitSaver()");

  state_.options = readExportOptions(CVxUserValues::getInt);

  GltfSettings settings{state_.outputForm, state_.options.indicesExport, state_.options.skinnedMeshInWS,
                        &state_.log.reporter()};
  state_.document = std::make_unique<GltfDocument>(settings);
  state_.documentRoot = state_.document->root();
  state_.scene = scene;
  state_.edit = scene.channelRead("edit", scene.time());
  state_.types = ItemTypes::lookup();
  state_.scan = scanScene(scene, state_.options, state_.types, state_.log);
}

VxResult GltfSaverBase::RunSaver() {
  state_.log.info("RunSaver()");
  if (!state_.document) {
    // A saver instance serves one real save: a second one has no document to fill.
    state_.log.reportError("Failed to export GLTF!");
    return VXR_FAILED;
  }

  MeshExporter meshes(state_.scene, state_.edit, state_.options, state_.log, *state_.document);
  NodeWalkContext nodes{state_.scene,        state_.edit, state_.options, state_.types,    state_.log,
                        *state_.document, state_.documentRoot, &meshes,   state_.itemNodes};
  walkNodes(nodes, state_.scan.rootItems);

  if (state_.options.cameras != 0) readRenderResolution();

  const bool written = state_.document->write(state_.destination);
  state_.document.reset();
  state_.documentRoot = GltfDocument::kNone;

  if (!written) {
    state_.log.reportError("Failed to export GLTF!");
    return VXR_FAILED;
  }
  state_.log.info("...DONE");
  return VXR_OK;
}

void GltfSaverBase::readRenderResolution() {
  state_.renderWidth = 720;
  state_.renderHeight = 480;
  const CVxUser_Item render = state_.scene.firstItem(state_.types.polyRender);
  if (!render.test()) return;
  state_.edit.integer(render, render.channelIndex("resX"), state_.renderWidth);
  state_.edit.integer(render, render.channelIndex("resY"), state_.renderHeight);
}
