#include "export_options.h"

const ExportOptionKey kExportOptionKeys[11] = {
    {"sceneio.gltf.save.exportType", 1, &ExportOptions::exportType},
    {"sceneio.gltf.save.geometry", 1, &ExportOptions::geometry},
    {"sceneio.gltf.save.materials", 1, &ExportOptions::materials},
    {"sceneio.gltf.save.cameras", 1, &ExportOptions::cameras},
    {"sceneio.gltf.save.animation", 1, &ExportOptions::animation},
    {"sceneio.gltf.save.morphMaps", 1, &ExportOptions::morphMaps},
    {"sceneio.gltf.save.skinnedMeshInWS", 1, &ExportOptions::skinnedMeshInWS},
    {"sceneio.gltf.save.tangentsBitangents", 0, &ExportOptions::tangentsBitangents},
    {"sceneio.gltf.save.indicesExport", 0, &ExportOptions::indicesExport},
    {"sceneio.gltf.save.sampleAnimFpsMultiplier", 0, &ExportOptions::sampleAnimFpsMultiplier},
    {"sceneio.gltf.save.exportActionType", 0, &ExportOptions::exportActionType},
};
