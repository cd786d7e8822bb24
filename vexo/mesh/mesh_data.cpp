#include "mesh/mesh_data.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "vexo/vx_mesh.h"

namespace vexo {
namespace {

// Corners, points and triangles are numbered in 32 bits across the SDK.
constexpr std::size_t kMaxElements = std::numeric_limits<std::uint32_t>::max() - 1;

std::string typeText(std::uint32_t type) {
  std::string s(4, ' ');
  for (int i = 0; i < 4; ++i) s[std::size_t(i)] = char((type >> (24 - 8 * i)) & 0xffu);
  return s;
}

}  // namespace

unsigned defaultMapDimension(std::uint32_t type) {
  struct Row {
    std::uint32_t type;
    unsigned dimension;
  };
  static const Row kRows[] = {
      {VX_VMAP_NORMAL, 3},    {VX_VMAP_RGB, 3},    {VX_VMAP_RGBA, 4},
      {VX_VMAP_TEXTUREUV, 2}, {VX_VMAP_TBASIS, 6}, {VX_VMAP_WEIGHT, 1},
  };
  for (const Row& row : kRows)
    if (row.type == type) return row.dimension;
  return 0;
}

MeshData::MeshData(std::string ident) : ident_(std::move(ident)) {
  tagNames_.emplace_back(kDefaultTag);
  tagIndex_.emplace(tagNames_.back(), 0u);
}

void MeshData::reserve(std::size_t points, std::size_t polygons, std::size_t corners) {
  points_.reserve(points);
  offsets_.reserve(polygons + 1);
  corners_.reserve(corners);
}

std::uint32_t MeshData::addPoint(const Vec3& position) {
  if (points_.size() >= kMaxElements) throw MeshError("the mesh has too many points");
  points_.push_back(position);
  changed();
  return std::uint32_t(points_.size() - 1);
}

void MeshData::appendPoints(const double* xyz, std::size_t count) {
  if (count > kMaxElements - points_.size()) throw MeshError("the mesh has too many points");
  points_.reserve(points_.size() + count);
  for (std::size_t i = 0; i < count; ++i) points_.push_back({xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]});
  changed();
}

void MeshData::setPoints(std::vector<Vec3>&& points) {
  if (points.size() > kMaxElements - points_.size()) throw MeshError("the mesh has too many points");
  if (points_.empty())
    points_ = std::move(points);
  else
    points_.insert(points_.end(), points.begin(), points.end());
  changed();
}

void MeshData::checkPoints(const std::uint32_t* points, std::size_t count) const {
  for (std::size_t i = 0; i < count; ++i) {
    if (points[i] >= points_.size()) {
      throw MeshError("point " + std::to_string(points[i]) + " does not exist: the mesh has " +
                      std::to_string(points_.size()) + " points");
    }
  }
  if (count > kMaxElements - corners_.size()) throw MeshError("the mesh has too many polygon corners");
}

std::uint32_t MeshData::addPolygon(const std::uint32_t* points, std::size_t count) {
  if (count < 3) {
    throw MeshError("a polygon needs at least 3 points, this one has " + std::to_string(count));
  }
  checkPoints(points, count);
  corners_.insert(corners_.end(), points, points + count);
  offsets_.push_back(std::uint32_t(corners_.size()));
  changed();
  return std::uint32_t(offsets_.size() - 2);
}

void MeshData::appendPolygons(std::size_t verticesEach, const std::uint32_t* points, std::size_t polygonCount) {
  if (verticesEach < 3) {
    throw MeshError("a polygon needs at least 3 points, these have " + std::to_string(verticesEach));
  }
  if (polygonCount > kMaxElements / verticesEach) throw MeshError("the mesh has too many polygon corners");
  checkPoints(points, verticesEach * polygonCount);
  corners_.insert(corners_.end(), points, points + verticesEach * polygonCount);
  offsets_.reserve(offsets_.size() + polygonCount);
  std::uint32_t offset = offsets_.back();
  for (std::size_t i = 0; i < polygonCount; ++i) offsets_.push_back(offset += std::uint32_t(verticesEach));
  changed();
}

void MeshData::setPolygons(std::vector<std::uint32_t>&& offsets, std::vector<std::uint32_t>&& points) {
  bool rising = !offsets.empty() && offsets.front() == 0 && offsets.back() == points.size();
  for (std::size_t i = 1; i < offsets.size() && rising; ++i) rising = offsets[i] >= offsets[i - 1];
  if (!rising) {
    throw MeshError("the polygon offsets do not match the " + std::to_string(points.size()) + " polygon points");
  }
  for (std::size_t i = 1; i < offsets.size(); ++i) {
    if (offsets[i] - offsets[i - 1] < 3) {
      throw MeshError("a polygon needs at least 3 points, this one has " + std::to_string(offsets[i] - offsets[i - 1]));
    }
  }
  checkPoints(points.data(), points.size());
  if (polygonCount() == 0) {
    offsets_ = std::move(offsets);
    corners_ = std::move(points);
  } else {
    const std::uint32_t start = offsets_.back();
    corners_.insert(corners_.end(), points.begin(), points.end());
    offsets_.reserve(offsets_.size() + offsets.size() - 1);
    for (std::size_t i = 1; i < offsets.size(); ++i) offsets_.push_back(start + offsets[i]);
  }
  changed();
}

std::uint32_t MeshData::corner(std::uint32_t polygon, std::uint32_t point) const {
  for (std::uint32_t c = offsets_[polygon]; c < offsets_[polygon + 1]; ++c)
    if (corners_[c] == point) return c;
  return kNoCorner;
}

std::uint32_t MeshData::internTag(std::string_view value) {
  auto it = tagIndex_.find(value);
  if (it != tagIndex_.end()) return it->second;
  tagNames_.emplace_back(value);
  const auto index = std::uint32_t(tagNames_.size() - 1);
  tagIndex_.emplace(tagNames_.back(), index);
  return index;
}

MeshData::TagColumn& MeshData::tagColumn(std::uint32_t tagType) {
  for (TagColumn& column : tags_)
    if (column.type == tagType) return column;
  tags_.push_back({tagType, {}});
  return tags_.back();
}

void MeshData::setPolygonTag(std::uint32_t polygon, std::uint32_t tagType, std::string_view value) {
  setPolygonTags(polygon, 1, tagType, value);
}

void MeshData::setPolygonTags(std::uint32_t first, std::size_t count, std::uint32_t tagType, std::string_view value) {
  if (first > polygonCount() || count > polygonCount() - first) {
    throw MeshError("polygon " + std::to_string(std::size_t(first) + count - 1) + " does not exist: the mesh has " +
                    std::to_string(polygonCount()) + " polygons");
  }
  const std::uint32_t index = internTag(value);
  std::vector<std::uint32_t>& values = tagColumn(tagType).values;
  if (values.size() < first + count) values.resize(polygonCount(), 0u);
  std::fill(values.begin() + first, values.begin() + first + std::ptrdiff_t(count), index);
}

const std::string& MeshData::polygonTag(std::uint32_t polygon, std::uint32_t tagType) const {
  for (const TagColumn& column : tags_) {
    if (column.type == tagType) return tagNames_[polygon < column.values.size() ? column.values[polygon] : 0];
  }
  return tagNames_[0];
}

void MeshData::setSmoothingAngle(double degrees) {
  if (!(degrees >= 0.0 && degrees <= 180.0)) {
    throw MeshError("the smoothing angle must be between 0 and 180 degrees, not " + std::to_string(degrees));
  }
  smoothingAngle_ = degrees;
  changed();
}

std::size_t MeshData::addMap(std::uint32_t type, std::string name, unsigned dimension) {
  if (findMap(type, name) != kNoMap) {
    throw MeshError("the mesh already has a \"" + typeText(type) + "\" map named \"" + name + "\"");
  }
  if (dimension == 0) dimension = defaultMapDimension(type);
  if (dimension == 0) {
    throw MeshError("the vertex map \"" + name + "\" of type \"" + typeText(type) +
                    "\" needs a dimension (values per element)");
  }
  maps_.push_back(std::make_unique<VertexMap>(type, std::move(name), dimension));
  return maps_.size() - 1;
}

std::size_t MeshData::findMap(std::uint32_t type, std::string_view name) const {
  for (std::size_t i = 0; i < maps_.size(); ++i)
    if (maps_[i]->type() == type && maps_[i]->name() == name) return i;
  return kNoMap;
}

void MeshData::checkMap(std::size_t map) const {
  if (map >= maps_.size()) throw MeshError("vertex map " + std::to_string(map) + " does not exist");
}

void MeshData::setPointValue(std::size_t map, std::uint32_t point, const float* values) {
  checkMap(map);
  if (point >= points_.size()) {
    throw MeshError("vertex map \"" + maps_[map]->name() + "\": point " + std::to_string(point) +
                    " does not exist: the mesh has " + std::to_string(points_.size()) + " points");
  }
  maps_[map]->setPointValue(point, values, points_.size());
}

void MeshData::setPointValues(std::size_t map, const float* values) {
  checkMap(map);
  VertexMap& m = *maps_[map];
  for (std::uint32_t p = 0; p < points_.size(); ++p)
    m.setPointValue(p, values + std::size_t(p) * m.dimension(), points_.size());
}

void MeshData::setPointValues(std::size_t map, std::vector<float>&& values) {
  checkMap(map);
  VertexMap& m = *maps_[map];
  const std::size_t count = points_.size();
  if (values.size() != count * m.dimension()) {
    throw MeshError("vertex map \"" + m.name() + "\": " + std::to_string(values.size()) + " values for " +
                    std::to_string(count) + " points of " + std::to_string(m.dimension()) + " values each");
  }
  if (m.pointCapacity_ != 0) return setPointValues(map, values.data());
  m.pointValues_ = std::move(values);
  m.pointCapacity_ = count;
  m.pointHas_.assign((count + 63) / 64, ~std::uint64_t(0));
  if (count % 64) m.pointHas_.back() = (std::uint64_t(1) << (count % 64)) - 1;
  m.pointValueCount_ = count;
}

void MeshData::setPointValues(std::size_t map, std::uint32_t first, std::size_t count, const float* values) {
  checkMap(map);
  if (count == 0) return;
  if (first >= points_.size() || count > points_.size() - first) {
    const std::size_t missing = std::max<std::size_t>(first, points_.size());
    throw MeshError("vertex map \"" + maps_[map]->name() + "\": point " + std::to_string(missing) +
                    " does not exist: the mesh has " + std::to_string(points_.size()) + " points");
  }
  VertexMap& m = *maps_[map];
  // The first value sizes the map to the whole mesh, as setPointValue does, then all are copied at once.
  m.setPointValue(first, values, points_.size());
  std::copy(values, values + count * m.dimension(), m.pointValues_.begin() + std::ptrdiff_t(first) * m.dimension());
  for (std::size_t p = first; p < first + count; ++p) {
    std::uint64_t& word = m.pointHas_[p >> 6];
    const std::uint64_t bit = std::uint64_t(1) << (p & 63);
    m.pointValueCount_ += !(word & bit);
    word |= bit;
  }
}

void MeshData::setCornerValue(std::size_t map, std::uint32_t polygon, std::uint32_t point, const float* values) {
  checkMap(map);
  if (polygon >= polygonCount()) {
    throw MeshError("vertex map \"" + maps_[map]->name() + "\": polygon " + std::to_string(polygon) +
                    " does not exist: the mesh has " + std::to_string(polygonCount()) + " polygons");
  }
  const std::uint32_t c = corner(polygon, point);
  if (c == kNoCorner) {
    throw MeshError("vertex map \"" + maps_[map]->name() + "\": point " + std::to_string(point) +
                    " is not a corner of polygon " + std::to_string(polygon));
  }
  maps_[map]->addCornerValue(c, values);
}

void MeshData::setCornerValues(std::size_t map, std::uint32_t first, std::size_t count, const float* values) {
  checkMap(map);
  if (first > corners_.size() || count > corners_.size() - first) {
    throw MeshError("vertex map \"" + maps_[map]->name() + "\": corners " + std::to_string(first) + " to " +
                    std::to_string(std::size_t(first) + count) + " are beyond the mesh's " +
                    std::to_string(corners_.size()) + " corners");
  }
  VertexMap& m = *maps_[map];
  m.cornerIds_.reserve(m.cornerIds_.size() + count);
  m.cornerValues_.reserve(m.cornerValues_.size() + count * m.dimension());
  for (std::size_t i = 0; i < count; ++i) m.addCornerValue(std::uint32_t(first + i), values + i * m.dimension());
}

const MeshGeometry& MeshData::geometry() const {
  if (!geometry_) geometry_ = std::make_unique<MeshGeometry>(buildMeshGeometry(*this));
  return *geometry_;
}

}  // namespace vexo
