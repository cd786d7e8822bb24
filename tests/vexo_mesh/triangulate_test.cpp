#include "mesh/triangulate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace vexo {
namespace {

using Outline = std::vector<std::pair<double, double>>;
using Indices = std::vector<std::uint32_t>;

// Even-odd rule; asked only about centroids of triangles with area.
bool inside(const Outline& poly, double x, double y) {
  bool in = false;
  for (std::size_t i = 0, j = poly.size() - 1; i < poly.size(); j = i++) {
    const auto [ax, ay] = poly[i];
    const auto [bx, by] = poly[j];
    if ((ay > y) != (by > y) && x < (bx - ax) * (y - ay) / (by - ay) + ax) in = !in;
  }
  return in;
}

// Planes with orthonormal axes to lay outlines on, so that the projection is exercised.
struct Plane {
  Vec3 origin, u, v;
};
const Plane kPlanes[] = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
                         {{10, -3, 7}, {0.6, 0.0, 0.8}, {-0.64, 0.6, 0.48}},
                         {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}}};

Indices triangulate(const std::vector<Vec3>& pts) {
  Indices out(3 * (pts.size() - 2), 0xdeadu);
  TriangulationScratch scratch;
  triangulatePolygon(pts.data(), unsigned(pts.size()), newellNormal(pts.data(), unsigned(pts.size())), scratch,
                     out.data());
  return out;
}

// n - 2 triangles that keep the winding, cover the area exactly, lie inside, and have area.
void expectCovers(const Outline& poly, const Plane& plane) {
  SCOPED_TRACE(::testing::Message() << poly.size() << "-gon");
  std::vector<Vec3> pts;
  for (auto [x, y] : poly) pts.push_back(plane.origin + plane.u * x + plane.v * y);
  const Vec3 newell = newellNormal(pts.data(), unsigned(pts.size()));
  const double area = length(newell) / 2;
  const Indices tri = triangulate(pts);
  double sum = 0;
  for (std::size_t t = 0; t < tri.size(); t += 3) {
    ASSERT_TRUE(tri[t] < poly.size() && tri[t + 1] < poly.size() && tri[t + 2] < poly.size());
    const Vec3 &a = pts[tri[t]], &b = pts[tri[t + 1]], &c = pts[tri[t + 2]];
    const double triArea = dot(cross(b - a, c - a), newell) / (2 * length(newell));
    EXPECT_GT(triArea, 1e-9 * area) << "triangle " << t / 3 << " is flat or wound backwards";
    sum += triArea;
    const double cx = (poly[tri[t]].first + poly[tri[t + 1]].first + poly[tri[t + 2]].first) / 3;
    const double cy = (poly[tri[t]].second + poly[tri[t + 1]].second + poly[tri[t + 2]].second) / 3;
    EXPECT_TRUE(inside(poly, cx, cy)) << "triangle " << t / 3 << " lies outside";
  }
  EXPECT_NEAR(sum, area, 1e-9 * area);
}

Outline star(unsigned n, const std::function<double(unsigned)>& radius) {
  Outline s;
  for (unsigned i = 0; i < n; ++i) {
    const double a = 2 * 3.14159265358979323846 * i / n, r = radius(i);
    s.push_back({r * std::cos(a), r * std::sin(a)});
  }
  return s;
}

TEST(Triangulate, ConcavePolygonsInAnyPlaneAndWinding) {
  const Outline shapes[] = {
      {{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}},                                                  // L
      {{0, 1}, {2, 1}, {2, 2}, {4, 0}, {2, -2}, {2, -1}, {0, -1}},                                       // arrow
      {{0, 0}, {5, 0}, {5, 3}, {4, 3}, {4, 1}, {3, 1}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}},  // comb
      star(10, [](unsigned i) { return i % 2 ? 0.4 : 1.0; }),
      star(24, [](unsigned i) { return i % 2 ? 0.1 : 3.0; }),
      // Points in a row along the sides: no flat triangle is needed, so none may appear.
      {{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}},
      {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 2}, {1, 3}, {0, 3}, {0, 2}, {0, 1}},
      {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {1.5, 1}},
  };
  for (const Plane& plane : kPlanes) {
    for (const Outline& shape : shapes) {
      expectCovers(shape, plane);
      expectCovers(Outline(shape.rbegin(), shape.rend()), plane);
    }
  }
  // Random star-shaped polygons: every kind of reflex run.
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> radius(0.05, 1.0);
  for (int round = 0; round < 300; ++round)
    expectCovers(star(5 + round % 40, [&](unsigned) { return radius(rng); }), kPlanes[round % 3]);
}

TEST(Triangulate, DegeneratePolygonsStillGiveEveryTriangle) {
  const std::vector<std::vector<Vec3>> shapes = {
      {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}},  // on one line
      {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}},  // one place
      {{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {1, 3, 0}},  // crossing itself
  };
  for (const auto& pts : shapes) {
    std::vector<int> used(pts.size(), 0);
    for (std::uint32_t v : triangulate(pts)) ++used.at(v);
    for (int u : used) EXPECT_GT(u, 0);
  }
  // Repeated points still cover the unit square exactly.
  const std::vector<Vec3> square = {{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 0}};
  const Indices tri = triangulate(square);
  double sum = 0;
  for (int t = 0; t < 12; t += 3)
    sum += cross(square[tri[t + 1]] - square[tri[t]], square[tri[t + 2]] - square[tri[t]]).z;
  EXPECT_DOUBLE_EQ(sum / 2, 1.0);
}

TEST(Triangulate, TrianglesStayAndQuadsTakeTheShorterDiagonal) {
  EXPECT_EQ(triangulate({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), (Indices{0, 1, 2}));
  const Indices d02{0, 1, 2, 0, 2, 3}, d13{1, 2, 3, 1, 3, 0};
  EXPECT_EQ(triangulate({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}), d02) << "a tie";
  EXPECT_EQ(triangulate({{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {1, 1, 0}}), d13);
  EXPECT_EQ(triangulate({{0, 0, 0}, {2, -2, 0}, {2.5, 0, 0}, {2, 2, 0}}), d02);
  EXPECT_EQ(triangulate({{0, 0, 0}, {0, 0, 2}, {0.7, 0.7, 3}, {0.7, 0.7, 1}}), d13) << "clockwise, tilted";
  // Darts and a triangle with a point on one side: the cut has to start at the bent vertex.
  EXPECT_EQ(triangulate({{0, 0, 0}, {0.5, 0.1, 0}, {1, 0, 0}, {0.5, 3, 0}}), d13);
  EXPECT_EQ(triangulate({{0, 0, 0}, {3, -0.3, 0}, {2.5, 0, 0}, {3, 0.3, 0}}), d02);
  EXPECT_EQ(triangulate({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 5, 0}}), d13);
}

}  // namespace
}  // namespace vexo
