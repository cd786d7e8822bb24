#include "grid_mesh.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "vexo/vx_mesh.h"

namespace gltfio::bench {
namespace {

constexpr double kWave = 0.05;  // height of the waves, in grid cells
constexpr double kPi = 3.14159265358979323846;

// Buffers scene-file text and hands it to the file in large blocks.
class TextOut {
 public:
  explicit TextOut(std::FILE* out) : out_(out) { text_.reserve(kBlock + 256); }
  ~TextOut() { flush(); }
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;

  TextOut& operator<<(const char* s) {
    text_ += s;
    return spill();
  }
  TextOut& operator<<(const std::string& s) {
    text_ += s;
    return spill();
  }
  // Shortest text that reads back to the same value.
  template <typename T>
  TextOut& number(T value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text_.append(digits, end);
    return spill();
  }
  bool flush() {
    ok_ = ok_ && std::fwrite(text_.data(), 1, text_.size(), out_) == text_.size();
    text_.clear();
    return ok_;
  }

 private:
  static constexpr std::size_t kBlock = 1 << 20;
  TextOut& spill() {
    if (text_.size() >= kBlock) flush();
    return *this;
  }

  std::FILE* out_;
  std::string text_;
  bool ok_ = true;
};

std::string typeCode(std::uint32_t type) {
  std::string code(4, ' ');
  for (int i = 0; i < 4; ++i) code[std::size_t(i)] = char((type >> (24 - 8 * i)) & 0xffu);
  return code;
}

void writeValue(TextOut& out, const float* value, unsigned dimension) {
  out << "[";
  for (unsigned d = 0; d < dimension; ++d) (d ? out << "," : out).number(value[d]);
  out << "]";
}

}  // namespace

GridSize gridFor(std::size_t triangles) {
  const std::size_t quads = (triangles + 1) / 2;
  if (quads == 0) return {};
  // The divisor of the quad count nearest its square root.
  auto rows = std::size_t(std::sqrt(double(quads)));
  while (rows > 1 && quads % rows != 0) --rows;
  if (rows == 0) rows = 1;
  return {unsigned(quads / rows), unsigned(rows)};
}

void fillGrid(vexo::MeshData& mesh, const GridSize& size) {
  const unsigned across = size.columns + 1;
  const std::size_t points = size.points();
  const std::size_t quads = std::size_t(size.columns) * size.rows;
  mesh.reserve(points, quads, 4 * quads);

  std::vector<double> xyz(3 * points);
  std::vector<float> normals(3 * points), uv0(2 * points), uv1(2 * points), colours(4 * points);
  const unsigned half = size.columns / 2 > 0 ? size.columns / 2 : 1;
  const double kx = 2 * kPi / 16, ky = 2 * kPi / 24;  // one wave every 16 and 24 cells
  for (unsigned y = 0; y <= size.rows; ++y) {
    for (unsigned x = 0; x <= size.columns; ++x) {
      const std::size_t p = std::size_t(y) * across + x;
      xyz[3 * p] = x;
      xyz[3 * p + 1] = y;
      xyz[3 * p + 2] = kWave * std::sin(kx * x) * std::cos(ky * y);
      // z = f(x, y): the normal is (-df/dx, -df/dy, 1), normalised.
      const double nx = -kWave * kx * std::cos(kx * x) * std::cos(ky * y);
      const double ny = kWave * ky * std::sin(kx * x) * std::sin(ky * y);
      const double length = std::sqrt(nx * nx + ny * ny + 1.0);
      normals[3 * p] = float(nx / length);
      normals[3 * p + 1] = float(ny / length);
      normals[3 * p + 2] = float(1.0 / length);
      const float u = float(x) / float(size.columns), v = float(y) / float(size.rows);
      uv0[2 * p] = u;
      uv0[2 * p + 1] = v;
      uv1[2 * p] = x <= half ? float(x) / float(half) : float(x - half) / float(half);
      uv1[2 * p + 1] = v;
      colours[4 * p] = u;
      colours[4 * p + 1] = v;
      colours[4 * p + 2] = 0.5f;
      colours[4 * p + 3] = 1.0f;
    }
  }
  mesh.appendPoints(xyz.data(), points);
  xyz = {};

  // Counter-clockwise seen from +Z.
  std::vector<std::uint32_t> corners(4 * quads);
  std::size_t c = 0;
  for (unsigned y = 0; y < size.rows; ++y) {
    for (unsigned x = 0; x < size.columns; ++x) {
      const std::uint32_t p = y * across + x;
      corners[c++] = p;
      corners[c++] = p + 1;
      corners[c++] = p + across + 1;
      corners[c++] = p + across;
    }
  }
  mesh.appendPolygons(4, corners.data(), quads);
  corners = {};

  mesh.setPointValues(mesh.addMap(VX_VMAP_NORMAL, "normal"), normals.data());
  mesh.setPointValues(mesh.addMap(VX_VMAP_TEXTUREUV, "uv0"), uv0.data());
  const std::size_t seamed = mesh.addMap(VX_VMAP_TEXTUREUV, "uv1");
  mesh.setPointValues(seamed, uv1.data());
  mesh.setPointValues(mesh.addMap(VX_VMAP_RGBA, "colour"), colours.data());

  // The right tile starts again at u = 0 on the seam.
  if (half < size.columns) {
    for (unsigned y = 0; y < size.rows; ++y) {
      const std::uint32_t polygon = y * size.columns + half;
      const std::uint32_t p = y * across + half;
      const float bottom[2] = {0.0f, float(y) / float(size.rows)};
      const float top[2] = {0.0f, float(y + 1) / float(size.rows)};
      mesh.setCornerValue(seamed, polygon, p, bottom);
      mesh.setCornerValue(seamed, polygon, p + across, top);
    }
  }
}

bool writeMeshScene(std::FILE* file, const vexo::MeshData& mesh) {
  TextOut out(file);
  out << "{\n  \"items\": [\n    { \"name\": \"Grid\", \"type\": \"mesh\",\n      \"mesh\": {\n        \"points\": [";
  for (std::size_t p = 0; p < mesh.pointCount(); ++p) {
    const vexo::Vec3& v = mesh.point(std::uint32_t(p));
    out << (p ? (p % 4 ? "," : ",\n          ") : "\n          ") << "[";
    out.number(v.x) << ",";
    out.number(v.y) << ",";
    out.number(v.z) << "]";
  }
  out << "],\n        \"polygons\": [";
  for (std::uint32_t polygon = 0; polygon < mesh.polygonCount(); ++polygon) {
    out << (polygon ? (polygon % 8 ? "," : ",\n          ") : "\n          ") << "[";
    const std::uint32_t* points = mesh.polygonPoints(polygon);
    for (unsigned k = 0; k < mesh.polygonSize(polygon); ++k) (k ? out << "," : out).number(points[k]);
    out << "]";
  }
  out << "],\n        \"maps\": [";
  for (std::size_t m = 0; m < mesh.mapCount(); ++m) {
    const vexo::VertexMap& map = mesh.map(m);
    out << (m ? ",\n" : "\n") << "          { \"type\": \"" << typeCode(map.type()) << "\", \"name\": \"" << map.name()
        << "\",\n            \"points\": [";
    for (std::size_t p = 0; p < mesh.pointCount(); ++p) {
      out << (p ? (p % 8 ? "," : ",\n              ") : "\n              ");
      if (const float* value = map.pointValue(std::uint32_t(p)))
        writeValue(out, value, map.dimension());
      else
        out << "null";
    }
    out << "]";
    const std::vector<std::uint32_t>& ids = map.cornerIds();
    if (!ids.empty()) {
      out << ",\n            \"corners\": [";
      std::uint32_t polygon = 0;
      for (std::size_t i = 0; i < ids.size(); ++i) {
        // Corner numbers rise with the polygons, so the polygon only moves forward.
        while (mesh.firstCorner(polygon) + mesh.polygonSize(polygon) <= ids[i]) ++polygon;
        out << (i ? ",\n              " : "\n              ") << "{ \"polygon\": ";
        out.number(polygon) << ", \"point\": ";
        out.number(mesh.polygonPoints(polygon)[ids[i] - mesh.firstCorner(polygon)]) << ", \"value\": ";
        writeValue(out, map.cornerValueAt(i), map.dimension());
        out << " }";
      }
      out << "]";
    }
    out << " }";
  }
  out << "]\n      } }\n  ]\n}\n";
  return out.flush();
}

}  // namespace gltfio::bench
