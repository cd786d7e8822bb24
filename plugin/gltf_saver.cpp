#include "gltf_saver.h"

#include "export/animation/animation_export.h"
#include "export/geometry/mesh_export.h"
#include "export/material/material_export.h"
#include "export/geometry/skin_export.h"
#include "host/user_values.h"
#include "scene/node_walk.h"
#include "scene/scene_scan.h"

VxResult GltfSaverBase::lastResult[2] = {VXR_OK, VXR_OK};

GltfSaverBase::GltfSaverBase(std::int32_t outputForm, VxResult* resultCell)
    : outputForm_(outputForm), resultCell_(resultCell) {}

// Wrapped whole, so that no exception (an allocation that fails) leaves the
// module: the save then fails as any other failed write does.
VxResult GltfSaverBase::ss_Save(const CVxUser_Scene& scene, const char* destination) try {
  GltfLogMsg& log = context_.log;
  log.resetCounters();
  destination_ = destination;

  if (!ss_IsRealSave()) {
    InitSaver(scene);
    return VXR_OK;
  }
  if (!initialised_) InitSaver(scene);

  VxResult result = VXR_OK;
  if (initStatus_ != 0) {
    // InitSaver reports no status today; the check stays for savers that will.
    log.reportError("GltfSaver failed to initialize");
    result = static_cast<VxResult>(initStatus_);
  } else {
    result = RunSaver();
  }

  const std::uint32_t errors = log.errors();
  const std::uint32_t warnings = log.warnings();
  if (errors != 0 || warnings != 0) {
    log.reportWarning("There are %d warnings and %d errors reported to event log", static_cast<int>(warnings),
                      static_cast<int>(errors));
    log.resetCounters();
  }
  *resultCell_ = result;
  return result;
} catch (...) {
  // Unwinding already removed any temporary file; drop what the save built.
  context_.meshes = nullptr;
  context_.document.reset();
  context_.documentRoot = GltfDocument::kNone;
  try {
    context_.log.reportError("Failed to export GLTF!");
  } catch (...) {
  }
  *resultCell_ = VXR_FAILED;
  return VXR_FAILED;
}

void GltfSaverBase::InitSaver(const CVxUser_Scene& scene) {
  initialised_ = true;
  ExportContext& c = context_;
  c.log.resetLog();
  c.log.trace("glTf v2 :: InitSaver()");

  c.options = readExportOptions(CVxUserValues::getInt);

  const GltfSettings settings{outputForm_, c.options.indicesExport, c.options.skinnedMeshInWS, &c.log.reporter()};
  c.document = std::make_unique<GltfDocument>(settings);
  c.documentRoot = c.document->root();
  c.scene = scene;
  c.edit = scene.channelRead("edit", scene.time());
  c.types = ItemTypes::lookup();
  scanScene(c);
}

VxResult GltfSaverBase::RunSaver() {
  ExportContext& c = context_;
  c.log.info("RunSaver()");
  if (!c.document) {
    // A saver instance serves one real save: a second one has no document to fill.
    c.log.reportError("Failed to export GLTF!");
    return VXR_FAILED;
  }

  MeshExporter meshes(c);
  c.meshes = &meshes;
  walkNodes(c);
  c.meshes = nullptr;
  // Despite its name, "morphMaps" switches the skins; no morph targets are written.
  if (c.options.morphMaps == 1 && !c.deformers.empty()) exportSkins(c, meshes);

  MaterialExporter(c).run(meshes.primitiveTags());
  exportAnimation(c);

  if (c.options.cameras != 0) readRenderResolution();

  const bool written = c.document->write(destination_);
  c.document.reset();
  c.documentRoot = GltfDocument::kNone;

  if (!written) {
    c.log.reportError("Failed to export GLTF!");
    return VXR_FAILED;
  }
  c.log.info("...DONE");
  return VXR_OK;
}

void GltfSaverBase::readRenderResolution() {
  renderWidth_ = 720;
  renderHeight_ = 480;
  const CVxUser_Item render = context_.scene.firstItem(context_.types.polyRender);
  if (!render.test()) return;
  context_.edit.integer(render, render.channelIndex("resX"), renderWidth_);
  context_.edit.integer(render, render.channelIndex("resY"), renderHeight_);
}
