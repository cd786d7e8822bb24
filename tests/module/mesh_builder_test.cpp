// Polygons into primitives and welded vertices, with plain arrays as the corners.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <vector>

#include "export/geometry/mesh_builder.h"

namespace {

// Corner values by point, with an override per (polygon, point) for values
// that differ between the polygons sharing a point.
class TableReader : public CornerReader {
 public:
  explicit TableReader(std::size_t stride) : stride_(stride) {}
  void setPoint(unsigned point, std::vector<double> normal, std::vector<float> values) {
    points_[point] = {std::move(normal), std::move(values)};
  }
  void setCorner(unsigned polygon, unsigned point, std::vector<double> normal, std::vector<float> values) {
    corners_[{polygon, point}] = {std::move(normal), std::move(values)};
  }
  void readCorner(unsigned point, double normal[3], float* values) override {
    ++reads;
    auto found = corners_.find({polygon, point});
    const Entry& entry = found != corners_.end() ? found->second : points_.at(point);
    for (int i = 0; i < 3; ++i) normal[i] = entry.normal[i];
    for (std::size_t i = 0; i < stride_; ++i) values[i] = entry.values[i];
  }
  unsigned polygon = 0;
  unsigned reads = 0;

 private:
  struct Entry {
    std::vector<double> normal;
    std::vector<float> values;
  };
  std::size_t stride_;
  std::map<unsigned, Entry> points_;
  std::map<std::pair<unsigned, unsigned>, Entry> corners_;
};

// Two quads sharing the edge 1-2, as two triangles each:
//   0---1---4
//   |   |   |
//   3---2---5
const unsigned kQuadA[] = {0, 1, 2, 3};
const unsigned kTrianglesA[] = {0, 1, 2, 0, 2, 3};
const unsigned kQuadB[] = {1, 4, 5, 2};
const unsigned kTrianglesB[] = {1, 4, 5, 1, 5, 2};

CornerLayout oneUvSet() {
  CornerLayout layout;
  layout.uvs = 1;
  return layout;
}

void fillPoints(TableReader& reader) {
  for (unsigned p = 0; p < 6; ++p) reader.setPoint(p, {0, 0, 1}, {0.1f * p, 0.5f, 1.0f});
}

TEST(MeshBuilder, SharedPointsWithEqualValuesBecomeOneVertex) {
  MeshBuilder builder(oneUvSet(), 6, 12, true);
  TableReader reader(builder.layout().stride());
  fillPoints(reader);
  ASSERT_TRUE(builder.addPolygon("Wood", kQuadA, 4, kTrianglesA, 2, reader));
  reader.polygon = 1;
  ASSERT_TRUE(builder.addPolygon("Wood", kQuadB, 4, kTrianglesB, 2, reader));

  ASSERT_EQ(builder.primitives().size(), 1u);
  const PrimitiveBuild& build = builder.primitives()[0];
  EXPECT_EQ(build.vertexPoint, (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5}));
  EXPECT_EQ(build.indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3, 1, 4, 5, 1, 5, 2}));
  // Each polygon reads each of its points once, however many triangles share it.
  EXPECT_EQ(reader.reads, 8u);
}

TEST(MeshBuilder, AnyDifferingValueAtAPointSplitsTheVertex) {
  MeshBuilder builder(oneUvSet(), 6, 12, true);
  TableReader reader(builder.layout().stride());
  fillPoints(reader);
  // Polygon 1 sees point 1 with another u (a seam) and point 2 with another normal.
  reader.setCorner(1, 1, {0, 0, 1}, {0.9f, 0.5f, 1.0f});
  reader.setCorner(1, 2, {0, 1, 0}, {0.2f, 0.5f, 1.0f});
  builder.addPolygon("Wood", kQuadA, 4, kTrianglesA, 2, reader);
  reader.polygon = 1;
  builder.addPolygon("Wood", kQuadB, 4, kTrianglesB, 2, reader);

  const PrimitiveBuild& build = builder.primitives()[0];
  EXPECT_EQ(build.vertexPoint, (std::vector<std::uint32_t>{0, 1, 2, 3, 1, 4, 5, 2}));
  EXPECT_EQ(build.indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7}));
  EXPECT_FLOAT_EQ(build.values[3 * 4], 0.9f);
  EXPECT_EQ(build.normals[3 * 7 + 1], 1.0);
}

TEST(MeshBuilder, NaNValuesNeverWeld) {
  CornerLayout layout;
  layout.colours = 1;
  MeshBuilder builder(layout, 6, 12, false);
  TableReader reader(layout.stride());
  for (unsigned p = 0; p < 6; ++p) reader.setPoint(p, {0, 0, 1}, {std::nanf(""), 0, 0, 1});
  builder.addPolygon("A", kQuadA, 4, kTrianglesA, 2, reader);
  reader.polygon = 1;
  builder.addPolygon("A", kQuadB, 4, kTrianglesB, 2, reader);
  // Within a polygon a point is read once; across polygons NaN matches nothing.
  EXPECT_EQ(builder.primitives()[0].vertexPoint.size(), 8u);
}

TEST(MeshBuilder, TagsMakePrimitivesInOrderOfFirstUseUnlessOneIsAsked) {
  for (const bool split : {true, false}) {
    MeshBuilder builder(oneUvSet(), 6, 18, split);
    TableReader reader(builder.layout().stride());
    fillPoints(reader);
    builder.addPolygon("Metal", kQuadA, 4, kTrianglesA, 2, reader);
    builder.addPolygon("Wood", kQuadB, 4, kTrianglesB, 2, reader);
    builder.addPolygon("Metal", kQuadB, 4, kTrianglesB, 2, reader);
    const auto& primitives = builder.primitives();
    if (!split) {
      ASSERT_EQ(primitives.size(), 1u);
      EXPECT_EQ(primitives[0].indices.size(), 18u);
      continue;
    }
    ASSERT_EQ(primitives.size(), 2u);
    EXPECT_EQ(primitives[0].tag, "Metal");
    EXPECT_EQ(primitives[1].tag, "Wood");
    // Each primitive numbers its own vertices from 0.
    EXPECT_EQ(primitives[0].indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3, 1, 4, 5, 1, 5, 2}));
    EXPECT_EQ(primitives[1].indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 3}));
  }
}

TEST(MeshBuilder, APointOutsideTheMeshAddsNothingAndNoTrianglesAddNoPrimitive) {
  MeshBuilder builder(oneUvSet(), 6, 6, true);
  TableReader reader(builder.layout().stride());
  fillPoints(reader);
  const unsigned bad[] = {0, 1, 2, 0, 2, 6};
  EXPECT_FALSE(builder.addPolygon("Wood", kQuadA, 4, bad, 2, reader));
  EXPECT_TRUE(builder.addPolygon("Empty", kQuadA, 4, nullptr, 0, reader));
  EXPECT_TRUE(builder.primitives().empty());
  EXPECT_EQ(reader.reads, 0u);
}

}  // namespace
