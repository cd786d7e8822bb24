// gltfio_bench: how long the plug-in takes to export big meshes, and how much
// memory it needs. Each size runs in a child process of its own, so that the
// peak memory (ru_maxrss) of one size never includes another's.
//
// Per size: the host engine builds the scene in memory (the "scene load"),
// then the plug-in file gltfio.vx, loaded beside this binary as the host
// loads it, saves it through "gltf.bin" with 32-bit indices and the whole
// scene exported. Sizes up to --file-limit are also written as scene files
// and read back, to time the scene-file reader.
#include <rapidjson/document.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#ifdef GLTFIO_BENCH_ASSIMP
#include <assimp/Exporter.hpp>
#include <assimp/scene.h>

#include <unordered_map>
#endif
#include <algorithm>

#include "engine/scene.h"
#include "grid_mesh.h"
#include "loader/plugin_loader.h"
#include "mesh/mesh_data.h"
#include "scenefile/scene_file.h"
#include "sdk_impl/sdk_host.h"
#include "sdk_impl/sdk_save_target.h"
#include "sdk_impl/sdk_scene.h"
#include "services/host_services.h"

namespace gltfio::bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); }

// What a child reports back through its pipe: plain data only.
struct ExportReport {
  char problem[512] = {};
  std::uint64_t triangles = 0, points = 0;
  double buildMs = 0, cachesMs = 0, saveMs = 0;
  std::uint64_t outputBytes = 0, vertices = 0, indices = 0;
  unsigned indexComponentType = 0;
  unsigned warnings = 0, errors = 0;
  // What the save added to the process: growth of the peak resident size
  // (the host scene was built before) and the minor page faults it took.
  long saveAddedKiB = 0, saveFaults = 0;
};

// The peer's glb export of the same mesh, the scene already in memory.
struct PeerReport {
  char problem[512] = {};
  double saveMs = 0;
  std::uint64_t outputBytes = 0, vertices = 0;
};

struct FileReport {
  char problem[512] = {};
  std::uint64_t fileBytes = 0, triangles = 0;
  double loadMs = 0;
};

template <typename Report>
void setProblem(Report& report, const std::string& text) {
  std::snprintf(report.problem, sizeof report.problem, "%s", text.c_str());
}

// Runs `work` in a child process and returns its report and peak resident memory in KiB.
template <typename Report, typename Work>
Report inChild(Work work, long& peakKiB) {
  Report report;
  int fds[2];
  if (pipe(fds) != 0) {
    setProblem(report, "cannot make a pipe");
    return report;
  }
  std::cout.flush();
  const pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    Report result;
    work(result);
    const bool written = write(fds[1], &result, sizeof result) == ssize_t(sizeof result);
    _exit(written ? 0 : 1);
  }
  close(fds[1]);
  const bool read = pid > 0 && ::read(fds[0], &report, sizeof report) == ssize_t(sizeof report);
  close(fds[0]);
  int status = 0;
  rusage usage{};
  if (pid > 0) wait4(pid, &status, 0, &usage);
  peakKiB = usage.ru_maxrss;
  if (!read) setProblem(report, pid > 0 ? "the child process died (status " + std::to_string(status) + ")" : "fork failed");
  return report;
}

// Reads the index accessors and vertex counts of the first mesh of a .glb file.
bool inspectGlb(const fs::path& path, ExportReport& report) {
  std::ifstream in(path, std::ios::binary);
  std::uint32_t header[5] = {};
  if (!in.read(reinterpret_cast<char*>(header), sizeof header) || header[4] != 0x4E4F534Au) return false;
  std::string json(header[3], '\0');
  if (!in.read(json.data(), std::streamsize(json.size()))) return false;
  rapidjson::Document doc;
  if (doc.Parse(json.data(), json.size()).HasParseError() || !doc.HasMember("meshes")) return false;
  const rapidjson::Value& accessors = doc["accessors"];
  for (const rapidjson::Value& primitive : doc["meshes"][0]["primitives"].GetArray()) {
    const rapidjson::Value& indices = accessors[primitive["indices"].GetUint()];
    report.indices += indices["count"].GetUint64();
    report.indexComponentType = indices["componentType"].GetUint();
    report.vertices += accessors[primitive["attributes"]["POSITION"].GetUint()]["count"].GetUint64();
  }
  return true;
}

fs::path glbPath(const fs::path& folder, const GridSize& size) {
  return folder / ("grid-" + std::to_string(size.triangles()) + ".glb");
}

void exportGrid(const GridSize& size, const fs::path& folder, ExportReport& report) {
  vexo::Scene scene;
  Clock::time_point start = Clock::now();
  vexo::Item* item = scene.addItem(scene.types().find("mesh"), "Grid");
  vexo::MeshData& mesh = *scene.meshes().ownMesh(*item);
  fillGrid(mesh, size);
  report.buildMs = msSince(start);
  report.triangles = mesh.triangleCount();
  report.points = mesh.pointCount();
  // A host has its triangles and normals long before anyone exports.
  start = Clock::now();
  mesh.geometry();
  report.cachesMs = msSince(start);

  vexo::HostServices services(nullptr);
  services.userValues.set("sceneio.gltf.save.indicesExport", "1");
  services.userValues.set("sceneio.gltf.save.exportType", "0");
  vexo::SdkScene sdkScene(scene);
  vexo::SdkHost host(services);
  std::string error;
  const std::string pluginFile = vexo::pluginPath("");
  std::unique_ptr<vexo::LoadedPlugin> plugin = vexo::LoadedPlugin::load(pluginFile, host, error);
  if (!plugin) return setProblem(report, error);
  IVxFactory* factory = host.findServer("gltf.bin");
  IVxSaver* saver = factory ? factory->SpawnSaver() : nullptr;
  if (!saver) return setProblem(report, "\"" + pluginFile + "\" has no saver \"gltf.bin\"");

  const fs::path destination = glbPath(folder, size);
  vexo::SaveTarget verify(sdkScene, false), real(sdkScene, true);
  rusage before{}, after{};
  getrusage(RUSAGE_SELF, &before);
  VxResult result = saver->Save(&verify, destination.c_str());
  if (VxOk(result)) {
    start = Clock::now();
    result = saver->Save(&real, destination.c_str());
    report.saveMs = msSince(start);
  }
  getrusage(RUSAGE_SELF, &after);
  report.saveAddedKiB = after.ru_maxrss - before.ru_maxrss;
  report.saveFaults = after.ru_minflt - before.ru_minflt;
  saver->Release();

  for (const vexo::LogRecord& record : services.log.records()) {
    if (record.severity == vexo::Severity::Warning) ++report.warnings;
    if (record.severity != vexo::Severity::Error) continue;
    if (report.errors++ == 0) setProblem(report, "the export logged: " + record.text);
  }
  if (VxFailed(result)) return setProblem(report, "the save failed");
  std::error_code ec;
  report.outputBytes = fs::file_size(destination, ec);
  if (!inspectGlb(destination, report)) setProblem(report, "cannot read back " + destination.string());
}

#ifdef GLTFIO_BENCH_ASSIMP
// The grid as the peer's scene: one vertex per point with the point's map
// values, plus one per point whose corners carry their own values (the seam),
// which is what the plug-in's export makes of it too.
aiScene* peerScene(const vexo::MeshData& mesh) {
  const auto pointCount = std::uint32_t(mesh.pointCount());
  std::vector<std::uint32_t> vertexPoint(pointCount);
  for (std::uint32_t p = 0; p < pointCount; ++p) vertexPoint[p] = p;
  std::vector<std::uint32_t> vertexCorner(pointCount, ~0u);
  std::unordered_map<std::uint32_t, std::uint32_t> split;  // point -> its corner vertex
  std::vector<std::uint32_t> faces;
  faces.reserve(3 * mesh.triangleCount());
  const vexo::MeshGeometry& geometry = mesh.geometry();
  for (std::uint32_t polygon = 0; polygon < mesh.polygonCount(); ++polygon) {
    const std::uint32_t* t = geometry.triangles.data() + 3 * std::size_t(mesh.firstTriangle(polygon));
    for (std::size_t i = 0; i < 3 * std::size_t(mesh.polygonSize(polygon) - 2); ++i) {
      const std::uint32_t point = t[i];
      const std::uint32_t corner = mesh.corner(polygon, point);
      bool own = false;
      for (std::size_t m = 0; m < mesh.mapCount() && !own; ++m) own = mesh.map(m).cornerValue(corner) != nullptr;
      std::uint32_t vertex = point;
      if (own) {
        auto [at, made] = split.try_emplace(point, std::uint32_t(vertexPoint.size()));
        if (made) vertexPoint.push_back(point), vertexCorner.push_back(corner);
        vertex = at->second;
      }
      faces.push_back(vertex);
    }
  }

  const auto vertices = unsigned(vertexPoint.size());
  auto* out = new aiMesh;
  out->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
  out->mNumVertices = vertices;
  out->mVertices = new aiVector3D[vertices];
  out->mNormals = new aiVector3D[vertices];
  out->mTextureCoords[0] = new aiVector3D[vertices];
  out->mTextureCoords[1] = new aiVector3D[vertices];
  out->mNumUVComponents[0] = out->mNumUVComponents[1] = 2;
  out->mColors[0] = new aiColor4D[vertices];
  const vexo::VertexMap& normal = mesh.map(mesh.findMap(VX_VMAP_NORMAL, "normal"));
  const vexo::VertexMap& uv0 = mesh.map(mesh.findMap(VX_VMAP_TEXTUREUV, "uv0"));
  const vexo::VertexMap& uv1 = mesh.map(mesh.findMap(VX_VMAP_TEXTUREUV, "uv1"));
  const vexo::VertexMap& colour = mesh.map(mesh.findMap(VX_VMAP_RGBA, "colour"));
  auto value = [&](const vexo::VertexMap& map, unsigned v) {
    const float* own = vertexCorner[v] != ~0u ? map.cornerValue(vertexCorner[v]) : nullptr;
    return own ? own : map.pointValue(vertexPoint[v]);
  };
  for (unsigned v = 0; v < vertices; ++v) {
    const vexo::Vec3& p = mesh.point(vertexPoint[v]);
    out->mVertices[v] = aiVector3D(float(p.x), float(p.y), float(p.z));
    const float* n = value(normal, v);
    out->mNormals[v] = aiVector3D(n[0], n[1], n[2]);
    const float* a = value(uv0, v);
    const float* b = value(uv1, v);
    out->mTextureCoords[0][v] = aiVector3D(a[0], a[1], 0);
    out->mTextureCoords[1][v] = aiVector3D(b[0], b[1], 0);
    const float* c = value(colour, v);
    out->mColors[0][v] = aiColor4D(c[0], c[1], c[2], c[3]);
  }
  out->mNumFaces = unsigned(faces.size() / 3);
  out->mFaces = new aiFace[out->mNumFaces];
  for (unsigned f = 0; f < out->mNumFaces; ++f) {
    out->mFaces[f].mNumIndices = 3;
    out->mFaces[f].mIndices = new unsigned[3]{faces[3 * f], faces[3 * f + 1], faces[3 * f + 2]};
  }

  auto* scene = new aiScene;
  scene->mNumMeshes = 1;
  scene->mMeshes = new aiMesh*[1]{out};
  scene->mNumMaterials = 1;
  scene->mMaterials = new aiMaterial*[1]{new aiMaterial};
  scene->mRootNode = new aiNode("Grid");
  scene->mRootNode->mNumMeshes = 1;
  scene->mRootNode->mMeshes = new unsigned[1]{0};
  return scene;
}

void peerExportGrid(const GridSize& size, const fs::path& folder, PeerReport& report) {
  vexo::MeshData mesh;
  fillGrid(mesh, size);
  std::unique_ptr<aiScene> scene(peerScene(mesh));
  report.vertices = scene->mMeshes[0]->mNumVertices;
  const fs::path destination = folder / ("peer-" + std::to_string(size.triangles()) + ".glb");
  Assimp::Exporter exporter;
  const Clock::time_point start = Clock::now();
  const aiReturn result = exporter.Export(scene.get(), "glb2", destination.string());
  report.saveMs = msSince(start);
  if (result != aiReturn_SUCCESS) return setProblem(report, std::string("the peer's export failed: ") + exporter.GetErrorString());
  std::error_code ec;
  report.outputBytes = fs::file_size(destination, ec);
  fs::remove(destination, ec);
}
#endif

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 ? values[half] : (values[half - 1] + values[half]) / 2;
}

void writeGridFile(const GridSize& size, const fs::path& path, FileReport& report) {
  vexo::MeshData mesh;
  fillGrid(mesh, size);
  std::FILE* file = std::fopen(path.c_str(), "wb");
  const bool written = file && writeMeshScene(file, mesh);
  if (file && std::fclose(file) != 0) return setProblem(report, "cannot write " + path.string());
  if (!written) setProblem(report, "cannot write " + path.string());
}

void loadGridFile(const fs::path& path, FileReport& report) {
  vexo::Scene scene;
  std::string error;
  const Clock::time_point start = Clock::now();
  if (!vexo::readSceneFile(path.string(), scene, error)) return setProblem(report, error);
  report.loadMs = msSince(start);
  vexo::Item* grid = scene.findIdent("Grid");
  vexo::MeshData* mesh = grid ? scene.meshes().meshOf(*grid) : nullptr;
  report.triangles = mesh ? mesh->triangleCount() : 0;
  std::error_code ec;
  report.fileBytes = fs::file_size(path, ec);
}

// "10k", "1M", "250000".
bool parseCount(const std::string& text, std::size_t& count) {
  std::size_t used = 0;
  double value = 0;
  try {
    value = std::stod(text, &used);
  } catch (const std::exception&) {
    return false;
  }
  const std::string unit = text.substr(used);
  const double scale = unit.empty() ? 1 : unit == "k" || unit == "K" ? 1e3 : unit == "M" || unit == "m" ? 1e6 : 0;
  if (scale == 0 || !(value * scale >= 1) || value * scale > 2e9) return false;
  count = std::size_t(value * scale + 0.5);
  return true;
}

std::string megabytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MiB", bytes / (1024.0 * 1024.0));
  return text;
}

int run(int argc, char** argv) {
  CLI::App app{"Times the gltfio plug-in's export of big meshes."};
  std::vector<std::string> sizes{"10k", "100k", "1M", "10M"};
  app.add_option("sizes", sizes, "triangle counts (10k, 1M, ...)")->capture_default_str();
  std::string fileLimitText = "1M";
  app.add_option("--file-limit", fileLimitText, "largest size also read from a scene file; 0: none")
      ->capture_default_str();
  std::string keep;
  app.add_option("--keep", keep, "write the .glb and scene files into this folder and keep them");
  unsigned runs = 1;
  app.add_option("--runs", runs, "exports per size, each against the peer's when it is built in; medians shown")
      ->capture_default_str();
  bool noPeer = false;
  app.add_flag("--no-peer", noPeer, "leave out the peer's export");
  CLI11_PARSE(app, argc, argv);

  std::size_t fileLimit = 0;
  if (fileLimitText != "0" && !parseCount(fileLimitText, fileLimit)) {
    std::cerr << "gltfio_bench: --file-limit takes a triangle count, not \"" << fileLimitText << "\"\n";
    return 2;
  }
  std::vector<std::size_t> counts;
  for (const std::string& text : sizes) {
    if (!parseCount(text, counts.emplace_back())) {
      std::cerr << "gltfio_bench: not a triangle count: \"" << text << "\"\n";
      return 2;
    }
  }

  fs::path folder = keep;
  if (keep.empty()) {
    std::string pattern = (fs::temp_directory_path() / "gltfio-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
      std::cerr << "gltfio_bench: cannot make a temporary folder\n";
      return 1;
    }
    folder = pattern;
  } else {
    fs::create_directories(folder);
  }

  std::printf(
      "Meshes: quad grids split into triangles by the host, with a \"NORM\" map, two \"TXUV\" maps (one with a seam)\n"
      "and an \"RGBA\" map. Export: plug-in %s, saver \"gltf.bin\", indicesExport=1, exportType=0.\n"
      "scene load = the scene built in memory through the host engine (points, polygons, maps);\n"
      "host caches = the host's triangulation and corner normals; export = the real Save call.\n"
      "Each size runs in a child process: peak = its ru_maxrss (host scene + plug-in); save adds = how much the\n"
      "save raised that peak over the scene's, faults = the minor page faults the save took.\n%s\n",
      vexo::pluginPath("").c_str(),
#ifdef GLTFIO_BENCH_ASSIMP
      "The peer's glb export (\"glb2\") of the same mesh, built in memory, runs after each export.\n"
#else
      "The peer library was not found when this was built: no comparison with it.\n"
#endif
  );
  std::printf("%11s %10s %12s %12s %11s %9s %10s %12s %10s %7s %12s %9s\n", "triangles", "points", "scene load",
              "host caches", "export", "Mtri/s", "vertices", "output", "peak", "indices", "save adds", "faults");
  int failures = 0;
  struct FileRow {
    std::size_t triangles;
    FileReport report;
    long peak;
  };
  std::vector<FileRow> fileRows;
  for (std::size_t count : counts) {
    const GridSize size = gridFor(count);
    long peak = 0;
    // Runs alternate between the plug-in and the peer, so both see the same load.
    std::vector<double> ours, theirs, ratios;
    ExportReport r;
    for (unsigned run = 0; run < std::max(runs, 1u); ++run) {
      r = inChild<ExportReport>([&](ExportReport& out) { exportGrid(size, folder, out); }, peak);
      if (r.problem[0]) break;
      ours.push_back(r.saveMs);
#ifdef GLTFIO_BENCH_ASSIMP
      if (noPeer) continue;
      long peerPeak = 0;
      const PeerReport p = inChild<PeerReport>([&](PeerReport& out) { peerExportGrid(size, folder, out); }, peerPeak);
      if (p.problem[0]) {
        std::printf("%11zu  peer failed: %s\n", size.triangles(), p.problem);
        continue;
      }
      theirs.push_back(p.saveMs);
      ratios.push_back(p.saveMs / r.saveMs);
#endif
    }
    if (!r.problem[0]) r.saveMs = median(ours);
    if (r.problem[0]) {
      std::printf("%11zu  failed: %s\n", size.triangles(), r.problem);
      ++failures;
    } else {
      const bool wide = r.indexComponentType == 5125;
      std::printf("%11llu %10llu %9.1f ms %9.1f ms %8.1f ms %9.2f %10llu %12s %10s %7s %12s %9ld\n",
                  (unsigned long long)r.triangles, (unsigned long long)r.points, r.buildMs, r.cachesMs, r.saveMs,
                  r.triangles / r.saveMs / 1000.0, (unsigned long long)r.vertices,
                  megabytes(double(r.outputBytes)).c_str(), megabytes(peak * 1024.0).c_str(),
                  wide ? "32-bit" : r.indexComponentType == 5123 ? "16-bit" : "?",
                  megabytes(r.saveAddedKiB * 1024.0).c_str(), r.saveFaults);
      if (!theirs.empty()) {
        std::printf("%11s  peer's glb export: median %.1f ms over %zu runs; ours %.1f ms; paired ratio median %.2fx "
                    "(%.2fx to %.2fx)\n",
                    "", median(theirs), theirs.size(), median(ours), median(ratios),
                    *std::min_element(ratios.begin(), ratios.end()), *std::max_element(ratios.begin(), ratios.end()));
      }
      if (r.indices != 3 * r.triangles || !wide || r.warnings) {
        std::printf("%11s  unexpected: %llu indices, %u warnings\n", "", (unsigned long long)r.indices, r.warnings);
        ++failures;
      }
    }
    std::fflush(stdout);
    if (keep.empty()) fs::remove(glbPath(folder, size));
    if (count > fileLimit) continue;

    const fs::path file = folder / ("grid-" + std::to_string(size.triangles()) + ".json");
    long writePeak = 0;
    FileRow row{size.triangles(), inChild<FileReport>([&](FileReport& out) { writeGridFile(size, file, out); }, writePeak), 0};
    if (!row.report.problem[0])
      row.report = inChild<FileReport>([&](FileReport& out) { loadGridFile(file, out); }, row.peak);
    fileRows.push_back(row);
    if (keep.empty()) fs::remove(file);
  }

  if (!fileRows.empty()) {
    std::printf("\nScene files (written by the benchmark, then read by the host's scene-file reader):\n");
    std::printf("%11s %12s %12s %10s %10s\n", "triangles", "file", "read", "MiB/s", "peak");
    for (const FileRow& row : fileRows) {
      if (row.report.problem[0]) {
        std::printf("%11zu  failed: %s\n", row.triangles, row.report.problem);
        ++failures;
        continue;
      }
      const double mib = double(row.report.fileBytes) / (1024.0 * 1024.0);
      std::printf("%11llu %12s %9.1f ms %10.1f %10s\n", (unsigned long long)row.report.triangles,
                  megabytes(double(row.report.fileBytes)).c_str(), row.report.loadMs, mib / (row.report.loadMs / 1000.0),
                  megabytes(row.peak * 1024.0).c_str());
      if (row.report.triangles != row.triangles) ++failures;
    }
  }
  if (keep.empty()) fs::remove_all(folder);
  return failures ? 1 : 0;
}

}  // namespace
}  // namespace gltfio::bench

int main(int argc, char** argv) { return gltfio::bench::run(argc, argv); }
