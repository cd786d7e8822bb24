#include "mesh/triangulate.h"

#include <cmath>

namespace vexo {
namespace {

// A turn whose sine is below this counts as flat: its vertex is no proper ear.
constexpr double kFlatSine = 1e-10;
// A point this close to a line, relative to the segment's length, lies on it.
constexpr double kOnLine = 1e-10;

// Signed turn at b of the path a-b-c, scaled to the sine of the turn angle.
// Positive for a left (convex) turn in a counter-clockwise polygon.
double turnSine(double au, double av, double bu, double bv, double cu, double cv) {
  const double e1u = bu - au, e1v = bv - av, e2u = cu - bu, e2v = cv - bv;
  const double cr = e1u * e2v - e1v * e2u;
  const double scale = std::sqrt((e1u * e1u + e1v * e1v) * (e2u * e2u + e2v * e2v));
  return scale > 0.0 ? cr / scale : 0.0;
}

// The sine of the turn at vertex b of a quad, signed by the quad's normal.
double turnSine3(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& unitNormal) {
  const Vec3 e1 = b - a, e2 = c - b;
  const double scale = std::sqrt(dot(e1, e1) * dot(e2, e2));
  return scale > 0.0 ? dot(cross(e1, e2), unitNormal) / scale : 0.0;
}

void splitQuad(const Vec3* p, const Vec3& normal, std::uint32_t* out) {
  const double len = length(normal);
  const Vec3 n = len > 0.0 ? normal * (1.0 / len) : Vec3{};
  bool bentAt[4];
  for (unsigned i = 0; i < 4; ++i) bentAt[i] = turnSine3(p[(i + 3) & 3], p[i], p[(i + 1) & 3], n) <= kFlatSine;
  const bool bent02 = bentAt[0] || bentAt[2], bent13 = bentAt[1] || bentAt[3];
  bool diagonal13;
  if (bent02 != bent13) {
    // Only a diagonal from a reflex or flat vertex stays inside the quad.
    diagonal13 = bent13;
  } else {
    const Vec3 d02 = p[2] - p[0], d13 = p[3] - p[1];
    diagonal13 = dot(d13, d13) < dot(d02, d02);
  }
  static const std::uint32_t k02[6] = {0, 1, 2, 0, 2, 3};
  static const std::uint32_t k13[6] = {1, 2, 3, 1, 3, 0};
  const std::uint32_t* pick = diagonal13 ? k13 : k02;
  for (unsigned i = 0; i < 6; ++i) out[i] = pick[i];
}

class EarClipper {
 public:
  EarClipper(TriangulationScratch& s, unsigned count) : u_(s.u), v_(s.v), prev_(s.prev), next_(s.next), count_(count) {}

  void project(const Vec3* p, const Vec3& normal) {
    // Drop the normal's largest axis; swap the other two when needed so the
    // polygon runs counter-clockwise in the plane.
    static constexpr double Vec3::*kPlanes[3][3] = {
        {&Vec3::x, &Vec3::y, &Vec3::z}, {&Vec3::y, &Vec3::z, &Vec3::x}, {&Vec3::z, &Vec3::x, &Vec3::y}};
    const double ax = std::fabs(normal.x), ay = std::fabs(normal.y), az = std::fabs(normal.z);
    const auto& plane = kPlanes[ax > ay && ax > az ? 0 : ay > az ? 1 : 2];  // {dropped, u, v}
    const double along = normal.*plane[0];
    u_.resize(count_);
    v_.resize(count_);
    for (unsigned i = 0; i < count_; ++i) {
      const Vec3 d = p[i] - p[0];  // near the origin keeps the precision of far-away meshes
      double a = d.*plane[1], b = d.*plane[2];
      if (along < 0.0) std::swap(a, b);
      u_[i] = a;
      v_[i] = b;
    }
  }

  void clip(std::uint32_t* out) {
    prev_.resize(count_);
    next_.resize(count_);
    for (unsigned i = 0; i < count_; ++i) {
      prev_[i] = i == 0 ? count_ - 1 : i - 1;
      next_[i] = i + 1 == count_ ? 0 : i + 1;
    }
    unsigned remaining = count_;
    std::uint32_t i = 0;
    unsigned misses = 0;
    while (remaining > 3) {
      if (isEar(i)) {
        i = cut(i, out);
        --remaining;
        misses = 0;
      } else if (++misses < remaining) {
        i = next_[i];
      } else {
        // No proper ear (flat, degenerate or self-crossing rest): cut the most convex vertex.
        i = cut(mostConvex(i, remaining), out);
        --remaining;
        misses = 0;
      }
    }
    emit(prev_[i], i, next_[i], out);
  }

 private:
  double turn(std::uint32_t i) const {
    const std::uint32_t a = prev_[i], c = next_[i];
    return turnSine(u_[a], v_[a], u_[i], v_[i], u_[c], v_[c]);
  }

  bool samePlace(std::uint32_t j, std::uint32_t k) const { return u_[j] == u_[k] && v_[j] == v_[k]; }

  // On the left of or on the directed line a->b. "On" allows for the rounding
  // of the projection, so that a point on a new diagonal always blocks it.
  bool leftOrOn(std::uint32_t a, std::uint32_t b, std::uint32_t q) const {
    const double du = u_[b] - u_[a], dv = v_[b] - v_[a];
    return du * (v_[q] - v_[a]) - dv * (u_[q] - u_[a]) >= -kOnLine * (du * du + dv * dv);
  }

  bool isEar(std::uint32_t i) const {
    if (turn(i) <= kFlatSine) return false;
    const std::uint32_t a = prev_[i], c = next_[i];
    for (std::uint32_t j = next_[c]; j != a; j = next_[j]) {
      if (samePlace(j, a) || samePlace(j, i) || samePlace(j, c)) continue;
      if (leftOrOn(a, i, j) && leftOrOn(i, c, j) && leftOrOn(c, a, j)) return false;
    }
    return true;
  }

  std::uint32_t mostConvex(std::uint32_t start, unsigned remaining) const {
    std::uint32_t best = start;
    double bestTurn = turn(start);
    std::uint32_t j = next_[start];
    for (unsigned k = 1; k < remaining; ++k, j = next_[j]) {
      const double t = turn(j);
      if (t > bestTurn) {
        bestTurn = t;
        best = j;
      }
    }
    return best;
  }

  // Emits the ear at i, unlinks i and returns where to look next.
  std::uint32_t cut(std::uint32_t i, std::uint32_t*& out) {
    const std::uint32_t a = prev_[i], c = next_[i];
    emit(a, i, c, out);
    next_[a] = c;
    prev_[c] = a;
    return c;
  }

  static void emit(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t*& out) {
    out[0] = a;
    out[1] = b;
    out[2] = c;
    out += 3;
  }

  std::vector<double>& u_;
  std::vector<double>& v_;
  std::vector<std::uint32_t>& prev_;
  std::vector<std::uint32_t>& next_;
  unsigned count_;
};

}  // namespace

Vec3 newellNormal(const Vec3* positions, unsigned count) {
  Vec3 n;
  const Vec3 origin = positions[0];
  for (unsigned i = 0; i < count; ++i) addNewellEdge(n, origin, positions[i], positions[i + 1 == count ? 0 : i + 1]);
  return n;
}

void triangulatePolygon(const Vec3* positions, unsigned count, const Vec3& normal, TriangulationScratch& scratch,
                        std::uint32_t* out) {
  if (count == 3) {
    out[0] = 0;
    out[1] = 1;
    out[2] = 2;
    return;
  }
  if (count == 4) {
    splitQuad(positions, normal, out);
    return;
  }
  EarClipper clipper(scratch, count);
  clipper.project(positions, normal);
  clipper.clip(out);
}

}  // namespace vexo
