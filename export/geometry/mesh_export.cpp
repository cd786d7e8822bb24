#include "mesh_export.h"

#include <algorithm>

#include "host/mesh.h"
#include "mesh_builder.h"
#include "vertex_attributes.h"

MeshExporter::MeshExporter(const CVxUser_Scene& scene, const CVxChannelRead& read, const ExportOptions& options,
                           GltfLogMsg& log, GltfDocument& document)
    : scene_(scene), read_(read), options_(options), log_(log), document_(document) {}

std::uint32_t MeshExporter::exportMesh(const CVxUser_Item& item) {
  const std::string name = item.name();
  const CVxMesh mesh(scene_, item);
  if (!mesh.test()) {
    log_.error("Failed to get mesh for item:%s", name.c_str());
    return GltfDocument::kNone;
  }

  // Any non-zero "visible" state leaves the mesh out, without a word.
  std::int32_t visible = 0;
  if (read_.integer(item, item.channelIndex("visible"), visible) && visible != 0) return GltfDocument::kNone;

  const std::string typeName = item.typeName();
  const auto cached = cache_.find(mesh.ident());
  if (cached != cache_.end()) {
    log_.info("   Using mesh:%s type:%s which is already created", name.c_str(), typeName.c_str());
    return cached->second;
  }

  const unsigned pointCount = mesh.pointCount();
  log_.info("   Creating mesh:%s type:%s nPoints:%u", name.c_str(), typeName.c_str(), pointCount);

  std::uint64_t polyInds = 0;
  const unsigned polygonCount = mesh.polygonCount();
  for (unsigned polygon = 0; polygon < polygonCount; ++polygon) polyInds += 3ull * mesh.polygonTriangleCount(polygon);
  if (polyInds > 0xffff && options_.indicesExport == 0) {
    log_.error(
        "   Creating mesh:%s type:%s nPoints:%u polyInds:%d failed! Number of vertices goes over the maximum of "
        "unsigned short data type!",
        name.c_str(), typeName.c_str(), pointCount, static_cast<int>(polyInds));
    return GltfDocument::kNone;
  }
  log_.info("   polyInds:%d", static_cast<int>(polyInds));

  const std::uint32_t gltfMesh = document_.addMesh();
  const MeshMaps maps = chooseMeshMaps(mesh, options_.tangentsBitangents != 0, log_);
  MeshBuilder builder(maps, pointCount, static_cast<std::size_t>(polyInds), options_.materials != 0);
  mesh.visitPolygons(builder);

  const std::vector<float> positions = readPositions(mesh);
  for (const PrimitiveBuild& build : builder.primitives()) {
    GltfPrimitiveDesc primitive;
    primitive.attributes = writeVertexAttributes(document_, builder, build, maps, positions);
    primitive.indices = document_.addIndexAccessor(build.indices);
    const std::uint32_t index = document_.addPrimitive(gltfMesh, primitive);
    if (options_.materials != 0) {
      primitiveTags_.push_back({gltfMesh, index, build.tag});
      if (std::find(polygonTags_.begin(), polygonTags_.end(), build.tag) == polygonTags_.end())
        polygonTags_.push_back(build.tag);
      log_.info("   material:%s polyInds:%lu", build.tag.c_str(), static_cast<unsigned long>(build.indices.size()));
    }
  }

  cache_.emplace(mesh.ident(), gltfMesh);
  return gltfMesh;
}
