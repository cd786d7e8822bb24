#include "mesh_export.h"

#include "host/mesh.h"
#include "mesh_builder.h"
#include "mesh_walk.h"
#include "vertex_attributes.h"

std::uint32_t MeshExporter::exportMesh(const CVxUser_Item& item) {
  GltfLogMsg& log = context_.log;
  const ExportOptions& options = context_.options;
  GltfDocument& document = *context_.document;
  const std::string name = item.name();
  const CVxMesh mesh(context_.scene, item);
  if (!mesh.test()) {
    log.error("Failed to get mesh for item:%s", name.c_str());
    return GltfDocument::kNone;
  }

  // Any non-zero "visible" state leaves the mesh out, without a word.
  std::int32_t visible = 0;
  if (context_.edit.integer(item, item.channelIndex("visible"), visible) && visible != 0) return GltfDocument::kNone;

  const std::string typeName = item.typeName();
  const auto cached = cache_.find(mesh.ident());
  if (cached != cache_.end()) {
    log.info("   Using mesh:%s type:%s which is already created", name.c_str(), typeName.c_str());
    itemMeshes_[item.key()] = cached->second;
    return cached->second;
  }

  const unsigned pointCount = mesh.pointCount();
  log.info("   Creating mesh:%s type:%s nPoints:%u", name.c_str(), typeName.c_str(), pointCount);

  std::uint64_t polyInds = 0;
  const unsigned polygonCount = mesh.polygonCount();
  for (unsigned polygon = 0; polygon < polygonCount; ++polygon) polyInds += 3ull * mesh.polygonTriangleCount(polygon);
  if (polyInds > 0xffff && options.indicesExport == 0) {
    log.error(
        "   Creating mesh:%s type:%s nPoints:%u polyInds:%d failed! Number of vertices goes over the maximum of "
        "unsigned short data type!",
        name.c_str(), typeName.c_str(), pointCount, static_cast<int>(polyInds));
    return GltfDocument::kNone;
  }
  log.info("   polyInds:%d", static_cast<int>(polyInds));

  const std::uint32_t gltfMesh = document.addMesh();
  const MeshMaps maps = chooseMeshMaps(mesh, name, options.tangentsBitangents != 0, log);
  MeshBuilder builder(maps.layout(), pointCount, static_cast<std::size_t>(polyInds), options.materials != 0);
  const MeshWalk walk = walkMesh(mesh, maps, builder);
  if (!walk.complete)
    log.error("   Polygon walk of mesh:%s stopped early: %u of %u polygons read", name.c_str(), walk.polygonsVisited,
              polygonCount);
  if (walk.failedTriangles != 0)
    log.error("   Host failed to give %u triangles of mesh:%s", walk.failedTriangles, name.c_str());

  const std::vector<float> positions = readPositions(mesh);
  const std::vector<std::string>& uvMaps = uvMaps_[gltfMesh] = maps.uvNames;
  std::vector<std::vector<std::uint32_t>>& vertexPoints = vertexPoints_[gltfMesh];
  // Each primitive's arrays go to the document (indices) or are let go as soon as written.
  for (PrimitiveBuild& build : builder.takePrimitives()) {
    GltfPrimitiveDesc primitive;
    primitive.attributes = writeVertexAttributes(document, builder.layout(), build, positions);
    build.normals = {};
    build.values = {};
    const std::size_t indexCount = build.indices.size();
    primitive.indices = document.addIndexAccessor(std::move(build.indices));
    vertexPoints.push_back(std::move(build.vertexPoint));
    const std::uint32_t index = document.addPrimitive(gltfMesh, primitive);
    if (options.materials != 0) {
      primitiveTags_.push_back({gltfMesh, index, build.tag, name, &uvMaps});
      log.info("   material:%s polyInds:%lu", build.tag.c_str(), static_cast<unsigned long>(indexCount));
    }
  }

  cache_.emplace(mesh.ident(), gltfMesh);
  itemMeshes_[item.key()] = gltfMesh;
  return gltfMesh;
}

std::uint32_t MeshExporter::meshOf(const CVxUser_Item& item) const {
  const auto found = itemMeshes_.find(item.key());
  return found == itemMeshes_.end() ? GltfDocument::kNone : found->second;
}

const std::vector<std::vector<std::uint32_t>>& MeshExporter::vertexPoints(std::uint32_t mesh) const {
  static const std::vector<std::vector<std::uint32_t>> kNone;
  const auto found = vertexPoints_.find(mesh);
  return found == vertexPoints_.end() ? kNone : found->second;
}
