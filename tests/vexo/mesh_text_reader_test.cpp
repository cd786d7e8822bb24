// The quick mesh reader against the general one: the same scene in memory for
// every mesh it takes, and the general reader's messages wherever it gives up.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "engine/scene.h"
#include "mesh/mesh_data.h"
#include "scenefile/mesh_text_reader.h"
#include "scenefile/scene_file.h"
#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

std::string meshScene(const std::string& mesh) {
  return "{\"items\": [\n  {\"name\": \"M\", \"type\": \"mesh\",\n   \"mesh\": " + mesh + "}\n]}";
}

// Numbers compared by their bits, so that -0 and 0 differ.
template <typename T>
std::vector<std::uint8_t> bitsOf(const T* values, std::size_t count) {
  std::vector<std::uint8_t> bits(sizeof(T) * count);
  if (count) std::memcpy(bits.data(), values, bits.size());
  return bits;
}

void expectSameMesh(const MeshData& a, const MeshData& b) {
  ASSERT_EQ(a.pointCount(), b.pointCount());
  EXPECT_EQ(bitsOf(a.points().data(), a.pointCount()), bitsOf(b.points().data(), b.pointCount()));
  ASSERT_EQ(a.polygonCount(), b.polygonCount());
  ASSERT_EQ(a.cornerCount(), b.cornerCount());
  for (std::uint32_t p = 0; p < a.polygonCount(); ++p) {
    ASSERT_EQ(a.polygonSize(p), b.polygonSize(p)) << p;
    EXPECT_EQ(std::memcmp(a.polygonPoints(p), b.polygonPoints(p), 4 * a.polygonSize(p)), 0) << p;
    EXPECT_EQ(a.polygonTag(p, VX_PTAG_MATERIAL), b.polygonTag(p, VX_PTAG_MATERIAL)) << p;
  }
  EXPECT_EQ(a.smoothingAngle(), b.smoothingAngle());
  ASSERT_EQ(a.mapCount(), b.mapCount());
  for (std::size_t m = 0; m < a.mapCount(); ++m) {
    const VertexMap& x = a.map(m);
    const VertexMap& y = b.map(m);
    EXPECT_EQ(x.type(), y.type());
    EXPECT_EQ(x.name(), y.name());
    ASSERT_EQ(x.dimension(), y.dimension());
    EXPECT_EQ(x.pointValueCount(), y.pointValueCount());
    for (std::uint32_t p = 0; p < a.pointCount(); ++p) {
      const float* u = x.pointValue(p);
      const float* v = y.pointValue(p);
      ASSERT_EQ(u == nullptr, v == nullptr) << x.name() << " point " << p;
      if (u) {
        EXPECT_EQ(bitsOf(u, x.dimension()), bitsOf(v, y.dimension())) << x.name() << " point " << p;
      }
    }
    ASSERT_EQ(x.cornerIds(), y.cornerIds()) << x.name();
    EXPECT_EQ(bitsOf(x.cornerValueAt(0), x.cornerIds().size() * x.dimension()),
              bitsOf(y.cornerValueAt(0), y.cornerIds().size() * y.dimension()));
  }
}

// Reads `text` both ways and expects the quick reader to have taken its mesh.
void expectReadsAlike(const std::string& text) {
  Scene quick, general;
  std::string quickError, generalError;
  ASSERT_TRUE(readSceneText(text, "scene.json", quick, quickError)) << quickError;
  ASSERT_TRUE(readSceneText(text, "scene.json", general, generalError, false)) << generalError;
  const MeshData* a = quick.meshes().ownMesh(*quick.findIdent("M"));
  const MeshData* b = general.meshes().ownMesh(*general.findIdent("M"));
  EXPECT_EQ(a->ident(), "M");
  expectSameMesh(*a, *b);
  // The quick reader took it, rather than leaving it to the general one.
  const std::size_t begin = text.find("\"mesh\": ") + 8;
  MeshData alone;
  EXPECT_EQ(readMeshText(text, begin, alone), text.rfind("}\n]}")) << text;
}

TEST(QuickMeshReader, ReadsTheSameMeshAsTheGeneralReader) {
  expectReadsAlike(meshScene(R"({
    // comments and trailing commas, as the general reader takes them
    "smoothingAngle": 12.5, /* before the points */
    "points": [[0,0,0], [-0, 1e0, 2.5E-1], [0.1, -1.7976931348623157e308, 123456789012345678901234],
               [4.9e-324, 1e-400, 0.30000000000000004], [9007199254740993, -0.0, 1E+2],],
    "polygons": [[0,1,2], [1,3,4,2], [4,3,0]],
    "materials": ["Béton", "Béton", "木材"],
    "maps": [
      {"type": "TXUV", "name": "uv", "points": [[0,0], null, [0.1, 0.2], [1e-50, 3.4e38], null],
       "corners": [{"value": [0.5, 0.25], "point": 2, "polygon": 1}, {"polygon": 0, "point": 2, "value": [1, 1],}]},
      {"name": "w", "type": "WGHT", "points": [0.25, [0.5], null, 1, -2]},
      {"type": "RGBA", "name": "c", "corners": [{"polygon": 2, "point": 0, "value": [1, 0, 0, 1]}]},
      {"type": "NORM", "name": "n", "points": [[0,0,1],[0,0,1],[0,0,1],[0,0,1],[0,0,1]]},
    ],
  })"));
  expectReadsAlike(meshScene(R"({"points": [], "polygons": [], "materials": [], "maps": []})"));

  // A random mesh with numbers in every spelling a writer might choose.
  std::mt19937 random(7);
  std::uniform_real_distribution<double> uniform(-1000.0, 1000.0);
  const auto number = [&] {
    char text[64];
    const double value = uniform(random);
    const char* formats[] = {"%.17g", "%.6f", "%.3e", "%.0f", "%.9g", "%.20f"};
    std::snprintf(text, sizeof text, formats[random() % 6], value / ((random() % 4 == 0) ? 1e6 : 1.0));
    return std::string(text);
  };
  const int points = 300;
  std::string mesh = "{\"points\": [";
  for (int p = 0; p < points; ++p) mesh += (p ? ",\n[" : "[") + number() + ", " + number() + "," + number() + "]";
  mesh += "], \"polygons\": [";
  std::vector<unsigned> firstPoints;
  for (int p = 0; p < 400; ++p) {
    const unsigned size = 3 + unsigned(random() % 3);
    mesh += p ? ", [" : "[";
    for (unsigned k = 0; k < size; ++k) {
      const unsigned point = unsigned(random() % points);
      if (k == 0) firstPoints.push_back(point);
      mesh += (k ? "," : "") + std::to_string(point);
    }
    mesh += "]";
  }
  mesh += "], \"materials\": [";
  for (int p = 0; p < 400; ++p) mesh += std::string(p ? ", " : "") + (random() % 5 ? "\"A\"" : "\"B\"");
  mesh += "], \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\", \"points\": [";
  for (int p = 0; p < points; ++p) mesh += std::string(p ? ", " : "") + (random() % 7 ? "[" + number() + "," + number() + "]" : "null");
  mesh += "], \"corners\": [";
  for (int c = 0; c < 50; ++c) {
    mesh += std::string(c ? ", " : "") + "{\"polygon\": " + std::to_string(c * 8) +
            ", \"point\": " + std::to_string(firstPoints[std::size_t(c) * 8]) + ", \"value\": [" + number() + ", " +
            number() + "]}";
  }
  mesh += "]}]}";
  expectReadsAlike(meshScene(mesh));
}

struct Refusal {
  std::string mesh;
  std::string needle;  // the message points at its first occurrence
  std::string message;
  std::size_t shift = 0;  // characters past the needle's start
};

// Where the quick reader gives up, the general one still reads and places its
// message; a mesh with a fault is never half taken.
TEST(QuickMeshReader, LeavesEveryFaultToTheGeneralReader) {
  std::string many = "{\"points\": [";
  for (int p = 0; p < 2000; ++p) many += (p ? ",\n  [" : "[") + std::to_string(p) + ".5, 0.25, -1]";
  many += "], \"polygons\": [[0,1,2]]";
  const auto manyWith = [&](const std::string& from, const std::string& to) {
    std::string text = many;
    text.replace(text.find(from), from.size(), to);
    return text + "}";
  };
  const Refusal cases[] = {
      {manyWith("[1234.5, 0.25", "[1234.5, 0.2x5"), "x5", "expected ',' or ']' after an array element"},
      // Syntax faults are placed where the parser stops, inside the number.
      {manyWith("[999.5, 0.25", "[999.5, 1.e5"), "1.e5", "missing digits after the decimal point", 2},
      {manyWith("[999.5, 0.25", "[999.5, 1e"), "1e,", "missing digits in the exponent", 2},
      {manyWith("[1500.5, 0.25", "[1500.5, NaN"), "NaN", "invalid JSON value"},
      {manyWith("[1500.5, 0.25", "[1500.5, -Infinity"), "-Infinity", "invalid JSON value", 1},
      {manyWith("[700.5, 0.25", "[700.5, 1e309"), "1e309", "number beyond the largest double (about 1.8e308)"},
      {manyWith("[700.5, 0.25, -1]", "[700.5, 0.25]"), "[700.5", "a point takes 3 numbers, not an array of 2"},
      {manyWith("[700.5, 0.25, -1]", "[700.5, 0.25, -1, 3]"), "[700.5", "a point takes 3 numbers, not an array of 4"},
      {manyWith("[[0,1,2]]", "[[0,1,2], [0, 1, 2000]]"), "2000]", "point 2000 does not exist: the mesh has 2000 points"},
      {manyWith("[[0,1,2]]", "[[0,1,2.0]]"), "2.0]", "a point index takes a whole number from 0, not 2"},
      {manyWith("[[0,1,2]]", "[[0,1,4294967296]]"), "4294967296",
       "a point index takes a whole number from 0, not 4294967296"},
      {manyWith("[[0,1,2]]", "[[0,1,2]], \"maps\": [{\"type\": \"TXUV\", \"name\": \"uv\", \"points\": [[0,0]]}]"),
       "[[0,0]]", "vertex map \"uv\" has 1 point values for 2000 points; give one per point, null for a point without one"},
      {manyWith("[[0,1,2]]",
                "[[0,1,2]], \"maps\": [{\"type\": \"WGHT\", \"name\": \"w\", \"corners\": "
                "[{\"polygon\": 0, \"point\": 1, \"value\": 1e39}]}]"),
       "1e39", "a \"WGHT\" value takes numbers up to the largest float (about 3.4e38), not 9.9999999999999994e+38"},
      {manyWith("[[0,1,2]]",
                "[[0,1,2]], \"maps\": [{\"type\": \"NORM\", \"name\": \"n\", \"corners\": "
                "[{\"polygon\": 0, \"point\": 1, \"value\": [0, -4e38, 1]}]}]"),
       "-4e38", "a \"NORM\" value takes numbers up to the largest float (about 3.4e38), not -3.9999999999999999e+38"},
      {manyWith("[[0,1,2]]", "[[0,1,2], [2,1,0]], \"materials\": [\"a\\u0062\", 7]"), "7]",
       "a material tag takes a string, not 7"},
      {manyWith("[[0,1,2]]", "[[0,1,2]], \"maps\": [{\"points\": [], \"type\": \"TXUV\", \"name\": \"\"}]"), "\"\"",
       "vertex map name is empty"},
  };
  for (const Refusal& c : cases) {
    const std::string text = meshScene(c.mesh);
    Scene scene;
    std::string error;
    EXPECT_FALSE(readSceneText(text, "scene.json", scene, error)) << c.message;
    // The needle's line and column, counted as the reader counts them.
    const std::size_t offset = text.find(c.needle) + c.shift;
    ASSERT_NE(offset, std::string::npos) << c.needle;
    const std::size_t lineStart = text.rfind('\n', offset) + 1;
    const std::size_t line = 1 + std::size_t(std::count(text.begin(), text.begin() + std::ptrdiff_t(offset), '\n'));
    Scene general;
    std::string generalError;
    EXPECT_FALSE(readSceneText(text, "scene.json", general, generalError, false));
    EXPECT_EQ(error, generalError);
    EXPECT_EQ(error, "scene.json:" + std::to_string(line) + ":" + std::to_string(offset - lineStart + 1) + ": " +
                         c.message);
    MeshData alone;
    EXPECT_EQ(readMeshText(text, text.find("\"mesh\": ") + 8, alone), std::string::npos) << c.message;
  }

  // A file cut short inside the mesh.
  const std::string whole = meshScene(many + "}");
  for (std::size_t cut : {whole.size() / 2, whole.find("\"polygons\"") + 5, whole.size() - 4}) {
    const std::string text = whole.substr(0, cut);
    Scene scene;
    std::string error;
    EXPECT_FALSE(readSceneText(text, "scene.json", scene, error));
    Scene general;
    std::string generalError;
    EXPECT_FALSE(readSceneText(text, "scene.json", general, generalError, false));
    EXPECT_EQ(error, generalError);
    EXPECT_NE(error.find(": "), std::string::npos);
  }
}

}  // namespace
}  // namespace vexo
