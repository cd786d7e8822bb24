// Real glTF assets that nobody here wrote, converted with `vexo convert`:
// each output validates, and the independent reader finds in it what it finds
// in the input: node world matrices, triangle corners in world space
// (positions, normals, UVs, joints and weights), and for animated assets the
// poses three.js plays at the output's sample times. Broken assets end with a
// clear error naming the file, never a crash.
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>
#include <unordered_map>

#include "gltf_reader.h"
#include "validator.h"
#include "test_matrix.h"
#include "vexo_runner.h"

namespace {

using Vec3 = std::array<double, 3>;

const std::string kCorpus = "/usr/share/assimp/models/glTF2";

bool corpusInstalled() {
  struct stat info {};
  return stat(kCorpus.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

#define SKIP_WITHOUT_CORPUS()                                                                              \
  do {                                                                                                     \
    if (!corpusInstalled())                                                                                \
      GTEST_SKIP() << kCorpus << " is missing: install Debian's assimp-testmodels (scripts/setup.sh --test)"; \
  } while (false)

// Nodes by the name the loader gives them: their own, else "Node" and their index.
std::vector<std::string> loadedNames(const ReadGltf& gltf) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < gltf.nodes.size(); ++i)
    names.push_back(gltf.nodes[i].name.empty() ? "Node" + std::to_string(i) : gltf.nodes[i].name);
  return names;
}

// Names that stand for exactly one node.
std::map<std::string, const ReadNode*> uniqueNodes(const ReadGltf& gltf, const std::vector<std::string>& names) {
  std::map<std::string, const ReadNode*> found;
  std::map<std::string, int> count;
  for (std::size_t i = 0; i < gltf.nodes.size(); ++i) found[names[i]] = &gltf.nodes[i], ++count[names[i]];
  for (const auto& [name, n] : count)
    if (n > 1) found.erase(name);
  return found;
}

Vec3 transformPoint(const Matrix& m, const double* p, double w) {
  return {m[0] * p[0] + m[4] * p[1] + m[8] * p[2] + m[12] * w, m[1] * p[0] + m[5] * p[1] + m[9] * p[2] + m[13] * w,
          m[2] * p[0] + m[6] * p[1] + m[10] * p[2] + m[14] * w};
}

// One triangle corner as plain numbers: world position, then what the input
// has of unit world normal, UV set 0, and four (joint, weight) pairs with
// joints numbered by name.
using Corner = std::vector<double>;

struct CornerSet {
  std::vector<Corner> corners;
  double extent = 0;  // the largest absolute coordinate
};

struct Parts {
  bool normals = false, uvs = false, skins = false;
};

// What the input holds anywhere: only that is compared.
Parts inputParts(const ReadGltf& gltf, Parts wanted) {
  Parts has;
  for (const ReadMesh& mesh : gltf.meshes)
    for (const ReadPrimitive& p : mesh.primitives) {
      has.normals = has.normals || p.attributes.count("NORMAL");
      has.uvs = has.uvs || p.attributes.count("TEXCOORD_0");
      has.skins = has.skins || p.attributes.count("JOINTS_0");
    }
  return {wanted.normals && has.normals, wanted.uvs && has.uvs, wanted.skins && has.skins};
}

CornerSet corners(const ReadGltf& gltf, const Parts& parts) {
  CornerSet set;
  for (const ReadNode& node : gltf.nodes) {
    if (node.mesh < 0) continue;
    const Matrix world = node.world;
    Matrix normalMatrix = inverse(world);  // transposed below
    for (const ReadPrimitive& p : gltf.meshes[static_cast<std::size_t>(node.mesh)].primitives) {
      if (p.mode < 4) continue;
      const std::vector<double>& pos = p.attributes.at("POSITION");
      std::vector<std::size_t> v;
      const std::size_t count = p.indices.empty() ? pos.size() / 3 : p.indices.size();
      for (std::size_t i = 0; i < count; ++i) v.push_back(p.indices.empty() ? i : static_cast<std::size_t>(p.indices[i]));
      std::vector<std::size_t> tri;
      for (std::size_t i = 0; i + 2 < v.size(); i += (p.mode == 4 ? 3 : 1)) {
        std::size_t a = v[i], b = v[i + 1], c = v[i + 2];
        if (p.mode == 5 && i % 2) std::swap(a, b);
        if (p.mode == 6) a = v[i + 1], b = v[i + 2], c = v[0];
        if (p.mode != 4 && (a == b || b == c || a == c)) continue;
        tri.insert(tri.end(), {a, b, c});
      }
      auto attribute = [&](const char* name) -> const std::vector<double>* {
        auto found = p.attributes.find(name);
        return found == p.attributes.end() ? nullptr : &found->second;
      };
      const std::vector<double>* normals = attribute("NORMAL");
      const std::vector<double>* uvs = attribute("TEXCOORD_0");
      const std::vector<double>* joints = attribute("JOINTS_0");
      const std::vector<double>* weights = attribute("WEIGHTS_0");
      for (std::size_t k : tri) {
        const Vec3 w = transformPoint(world, &pos[3 * k], 1);
        Corner corner(w.begin(), w.end());
        for (double x : w) set.extent = std::max(set.extent, std::fabs(x));
        if (parts.normals) {
          if (!normals) {
            ADD_FAILURE() << "a primitive without normals";
            return set;
          }
          const double* n = &(*normals)[3 * k];
          // The inverse transpose carries normals; a zero normal stays zero.
          Vec3 m = {normalMatrix[0] * n[0] + normalMatrix[1] * n[1] + normalMatrix[2] * n[2],
                    normalMatrix[4] * n[0] + normalMatrix[5] * n[1] + normalMatrix[6] * n[2],
                    normalMatrix[8] * n[0] + normalMatrix[9] * n[1] + normalMatrix[10] * n[2]};
          const double length = std::sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]);
          for (double x : m) corner.push_back(length > 0 ? x / length : 0);
        }
        if (parts.uvs && uvs) corner.insert(corner.end(), {(*uvs)[2 * k], (*uvs)[2 * k + 1]});
        // Joints by their place in the skin, which the exporter keeps.
        if (parts.skins && joints && weights) {
          std::map<int, double> byJoint;
          for (int s = 0; s < 4; ++s) {
            const double weight = (*weights)[4 * k + std::size_t(s)];
            if (weight > 0) byJoint[static_cast<int>((*joints)[4 * k + std::size_t(s)])] += weight;
          }
          std::vector<double> pairs;
          for (const auto& [joint, weight] : byJoint) pairs.insert(pairs.end(), {double(joint), weight});
          pairs.resize(8, -1.0);
          corner.insert(corner.end(), pairs.begin(), pairs.end());
        }
        set.corners.push_back(std::move(corner));
      }
    }
  }
  return set;
}

// Every input corner matched by one output corner within `tolerance` in
// its position and within 2e-3 in its other numbers (normals, UVs and
// weights are written in single precision or less); returns how many are left unmatched on either side.
std::size_t unmatchedCorners(const std::vector<Corner>& in, const std::vector<Corner>& out, double tolerance) {
  const double cell = std::max(tolerance * 100, 1e-6);
  auto key = [&](const Corner& c, int dx, int dy, int dz) {
    std::ostringstream k;
    k << std::llround(std::floor(c[0] / cell)) + dx << ',' << std::llround(std::floor(c[1] / cell)) + dy << ','
      << std::llround(std::floor(c[2] / cell)) + dz;
    return k.str();
  };
  std::unordered_map<std::string, std::vector<std::size_t>> cells;
  for (std::size_t i = 0; i < in.size(); ++i) cells[key(in[i], 0, 0, 0)].push_back(i);
  std::vector<bool> used(in.size(), false);
  std::size_t unmatched = 0;
  for (const Corner& c : out) {
    bool found = false;
    for (int d = 0; d < 27 && !found; ++d) {
      auto at = cells.find(key(c, d % 3 - 1, d / 3 % 3 - 1, d / 9 - 1));
      if (at == cells.end()) continue;
      for (std::size_t i : at->second) {
        if (used[i] || in[i].size() != c.size()) continue;
        bool same = true;
        for (std::size_t v = 0; v < c.size() && same; ++v) same = std::fabs(in[i][v] - c[v]) <= (v < 3 ? tolerance : 2e-3);
        if (same) {
          used[i] = found = true;
          break;
        }
      }
    }
    if (!found) ++unmatched;
  }
  return unmatched + static_cast<std::size_t>(std::count(used.begin(), used.end(), false));
}

struct Converted {
  VexoRun run;
  ReadGltf in, out;
  std::string outPath;
};

Converted convert(const TempDir& dir, const std::string& asset) {
  Converted c;
  c.outPath = dir.file("out.glb");
  c.run = runVexo({"convert", kCorpus + "/" + asset, c.outPath});
  EXPECT_EQ(c.run.exitCode, 0) << c.run.errText();
  if (c.run.exitCode != 0) return c;
  EXPECT_TRUE(isValidGltf(c.outPath));
  std::string problem;
  EXPECT_TRUE(readGltf(kCorpus + "/" + asset, c.in, problem)) << problem;
  EXPECT_TRUE(readGltf(c.outPath, c.out, problem)) << problem;
  return c;
}

void expectSameWorld(const Converted& c) {
  const std::map<std::string, const ReadNode*> in = uniqueNodes(c.in, loadedNames(c.in));
  const std::map<std::string, const ReadNode*> out = uniqueNodes(c.out, loadedNames(c.out));
  std::size_t compared = 0;
  for (const auto& [name, node] : in) {
    auto found = out.find(name);
    ASSERT_NE(found, out.end()) << "node " << name << " is missing from the output";
    for (int i = 0; i < 16; ++i)
      ASSERT_NEAR(node->world[i], found->second->world[i], 1e-4 * std::max(1.0, std::fabs(node->world[i])))
          << "world matrix of node " << name << ", element " << i;
    ++compared;
  }
  EXPECT_GT(compared, 0u);
}

void expectSameCorners(const Converted& c, const Parts& parts) {
  const Parts compared = inputParts(c.in, parts);
  const CornerSet in = corners(c.in, compared);
  const CornerSet out = corners(c.out, compared);
  ASSERT_EQ(in.corners.size(), out.corners.size()) << "triangle corners";
  EXPECT_GT(in.corners.size(), 0u);
  EXPECT_EQ(unmatchedCorners(in.corners, out.corners, 1e-5 * std::max(1.0, in.extent)), 0u);
}

// A test name from an asset's path: its letters and digits.
std::string testName(const char* path) {
  std::string name;
  for (const char* c = path; *c; ++c)
    if (std::isalnum(static_cast<unsigned char>(*c))) name += *c;
  return name;
}

struct Asset {
  const char* path;
  Parts parts;
};

class CorpusAsset : public ::testing::TestWithParam<Asset> {};

TEST_P(CorpusAsset, ConvertsValidatesAndKeepsNodesAndTriangleCorners) {
  SKIP_WITHOUT_CORPUS();
  TempDir dir;
  const Converted c = convert(dir, GetParam().path);
  if (HasFailure()) return;
  expectSameWorld(c);
  expectSameCorners(c, GetParam().parts);
}

const Parts kAll{true, true, true};

INSTANTIATE_TEST_SUITE_P(
    Corpus, CorpusAsset,
    ::testing::Values(Asset{"BoxTextured-glTF/BoxTextured.gltf", kAll},
                      Asset{"BoxTextured-glTF-Binary/BoxTextured.glb", kAll},
                      Asset{"BoxTextured-glTF-Embedded/BoxTextured.gltf", kAll},
                      Asset{"2CylinderEngine-glTF-Binary/2CylinderEngine.glb", kAll},
                      Asset{"simple_skin/simple_skin.gltf", kAll}, Asset{"BoxTexcoords-glTF/boxTexcoords.gltf", kAll},
                      Asset{"ClearCoat-glTF/ClearCoatTest.gltf", kAll},
                      Asset{"textureTransform/TextureTransformTest.gltf", kAll},
                      Asset{"glTF-Sample-Models/AnimatedMorphCube-glTF/AnimatedMorphCube.gltf", kAll},
                      // Normals of zero length: the exporter writes the host's own normals there.
                      Asset{"BoxBadNormals-glTF-Binary/BoxBadNormals.glb", {false, true, true}},
                      Asset{"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_11.gltf", kAll},
                      Asset{"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_12.gltf", kAll},
                      Asset{"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_13.gltf", kAll},
                      Asset{"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_14.gltf", kAll},
                      Asset{"glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_15.gltf", kAll}),
    [](const ::testing::TestParamInfo<Asset>& info) { return testName(info.param.path); });

// Images inside a .glb come out as the same bytes, and the cameras keep their field of view.
TEST(Corpus, CamerasKeepTheirPlaceAndFieldOfView) {
  SKIP_WITHOUT_CORPUS();
  TempDir dir;
  const Converted c = convert(dir, "cameras/Cameras.gltf");
  if (HasFailure()) return;
  expectSameWorld(c);
  ASSERT_EQ(c.out.cameras.size(), 2u);
  ASSERT_EQ(c.in.cameras.size(), 2u);
  EXPECT_NEAR(c.out.cameras[0].yfov, c.in.cameras[0].yfov, 1e-6);
  EXPECT_NEAR(c.out.cameras[0].znear, c.in.cameras[0].znear, 1e-6);
  EXPECT_TRUE(c.run.printed("vexo: warning: " + kCorpus + "/cameras/Cameras.gltf: camera Node2 is orthographic; the "
                            "host's cameras are perspective, so it is loaded with the host's lens and its clipping planes"))
      << c.run.errText();
}

std::string runEngine(const std::string& file, const std::string& times) {
  std::string text;
  if (FILE* pipe = popen(("node " GLTFIO_ANIMATE_SCRIPT " '" + file + "' '" + times + "' 2>&1").c_str(), "r")) {
    char buffer[4096];
    for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
    pclose(pipe);
  }
  return text;
}

// three.js plays the input's first animation and the converted one at the
// output's sample times; every node's world matrix agrees. Rotations between
// keys differ only by the host's Euler steps of at most 5 degrees.
TEST(Corpus, SkinnedAnimationPlaysTheSamePoses) {
  SKIP_WITHOUT_CORPUS();
  TempDir dir;
  const std::string asset = "simple_skin/simple_skin.gltf";
  const Converted c = convert(dir, asset);
  if (HasFailure()) return;
  rapidjson::Document out, in;
  const std::string outText = runEngine(c.outPath, "");
  ASSERT_FALSE(out.Parse(outText.c_str()).HasParseError()) << outText.substr(0, 2000);
  ASSERT_GE(out["clips"].Size(), 1u);
  std::string times;
  for (const auto& sample : out["clips"][0]["samples"].GetArray())
    times += (times.empty() ? "" : ",") + std::to_string(sample["time"].GetDouble());
  const std::string inText = runEngine(kCorpus + "/" + asset, times);
  ASSERT_FALSE(in.Parse(inText.c_str()).HasParseError()) << inText.substr(0, 2000);
  const auto& outSamples = out["clips"][0]["samples"];
  const auto& inSamples = in["clips"][0]["samples"];
  ASSERT_EQ(outSamples.Size(), inSamples.Size());
  ASSERT_GE(outSamples.Size(), 3u);
  std::size_t compared = 0;
  for (rapidjson::SizeType s = 0; s < outSamples.Size(); ++s) {
    for (const auto& node : inSamples[s]["nodes"].GetObject()) {
      // The loader names an unnamed node "Node" and its index.
      std::string name = node.name.GetString();
      if (name[0] == '#') name = "Node" + name.substr(1);
      if (!outSamples[s]["nodes"].HasMember(name.c_str())) continue;
      const auto& a = node.value["world"];
      const auto& b = outSamples[s]["nodes"][name.c_str()]["world"];
      for (rapidjson::SizeType i = 0; i < 16; ++i)
        ASSERT_NEAR(a[i].GetDouble(), b[i].GetDouble(), 2e-3)
            << "node " << name << " at " << outSamples[s]["time"].GetDouble() << " s, element " << i;
      ++compared;
    }
  }
  EXPECT_GT(compared, outSamples.Size());
}

struct Broken {
  const char* path;
  const char* error;  // what the line after "vexo: FILE: " says
};

class BrokenAsset : public ::testing::TestWithParam<Broken> {};

TEST_P(BrokenAsset, EndsWithAClearErrorNamingTheFile) {
  SKIP_WITHOUT_CORPUS();
  TempDir dir;
  const std::string file = kCorpus + "/" + GetParam().path;
  const VexoRun run = runVexo({"convert", file, dir.file("out.glb")});
  EXPECT_EQ(run.exitCode, 2) << run.errText();
  EXPECT_TRUE(run.printed("vexo: " + file + ": " + GetParam().error)) << run.errText();
  EXPECT_FALSE(fileExists(dir.file("out.glb")));
}

INSTANTIATE_TEST_SUITE_P(
    Corpus, BrokenAsset,
    ::testing::Values(
        Broken{"IndexOutOfRange/IndexOutOfRange.gltf", "mesh 0: index 255 is out of range for its 24 vertices"},
        Broken{"IndexOutOfRange/AllIndicesOutOfRange.gltf", "mesh 0: index 65535 is out of range for its 24 vertices"},
        Broken{"RecursiveNodes/RecursiveNodes.gltf", "node 0 is its own ancestor: the nodes form a loop"},
        Broken{"MissingBin/BoxTextured.gltf", "cannot load the glTF file: File not found : BoxTextured0.bin"},
        Broken{"BoxWithInfinites-glTF-Binary/BoxWithInfinites.glb",
               "mesh 0 POSITION: accessor 2 holds a value that is not finite at element 0"},
        Broken{"draco/2CylinderEngine.gltf",
               "meshes compressed with KHR_draco_mesh_compression cannot be loaded; decompress the file first"}),
    [](const ::testing::TestParamInfo<Broken>& info) { return testName(info.param.path); });

// Files with values of the wrong JSON type: the parser passes over what it
// cannot read, and what it read converts to a valid file.
TEST(Corpus, WrongTypesNeverCrash) {
  SKIP_WITHOUT_CORPUS();
  for (const char* name : {"badArray", "badExtension", "badNumber", "badObject", "badString", "badUint"}) {
    TempDir dir;
    const VexoRun run = runVexo({"convert", kCorpus + "/wrongTypes/" + name + ".gltf", dir.file("out.glb")});
    ASSERT_TRUE(run.exitCode == 0 || run.exitCode == 2) << name << ": " << run.errText();
    if (run.exitCode == 0) {
      EXPECT_TRUE(isValidGltf(dir.file("out.glb"))) << name;
    }
  }
}

// Points and lines are no polygons: they are left out with a warning, and the file has no mesh.
TEST(Corpus, PointsAndLinesAreLeftOutWithAWarning) {
  SKIP_WITHOUT_CORPUS();
  TempDir dir;
  const std::string file = kCorpus + "/glTF-Asset-Generator/Mesh_PrimitiveMode/Mesh_PrimitiveMode_00.gltf";
  const VexoRun run = runVexo({"convert", file, dir.file("out.glb")});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_TRUE(run.printed("vexo: warning: " + file +
                          ": mesh 0: a primitive of points is left out; the host's meshes hold polygons"))
      << run.errText();
  EXPECT_TRUE(isValidGltf(dir.file("out.glb")));
}

}  // namespace
