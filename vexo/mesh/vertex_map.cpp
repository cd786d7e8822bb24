#include "mesh/vertex_map.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace vexo {

VertexMap::VertexMap(std::uint32_t type, std::string name, unsigned dimension)
    : type_(type), name_(std::move(name)), dimension_(dimension) {}

void VertexMap::setPointValue(std::uint32_t point, const float* values, std::size_t pointCount) {
  if (point >= pointCapacity_) {
    // Grow to the whole mesh at once: point values are usually given for every point.
    pointCapacity_ = std::max<std::size_t>(pointCount, std::size_t(point) + 1);
    pointValues_.resize(pointCapacity_ * dimension_, 0.0f);
    pointHas_.resize((pointCapacity_ + 63) / 64, 0);
  }
  std::uint64_t& word = pointHas_[point >> 6];
  const std::uint64_t bit = std::uint64_t(1) << (point & 63);
  if (!(word & bit)) {
    word |= bit;
    ++pointValueCount_;
  }
  std::copy(values, values + dimension_, pointValues_.begin() + std::ptrdiff_t(point) * dimension_);
}

void VertexMap::addCornerValue(std::uint32_t corner, const float* values) {
  if (!cornerIds_.empty() && corner <= cornerIds_.back()) cornersSorted_ = false;
  cornerIds_.push_back(corner);
  cornerValues_.insert(cornerValues_.end(), values, values + dimension_);
}

void VertexMap::sortCorners() const {
  if (cornersSorted_) return;
  std::vector<std::uint32_t> order(cornerIds_.size());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(),
                   [this](std::uint32_t a, std::uint32_t b) { return cornerIds_[a] < cornerIds_[b]; });
  std::vector<std::uint32_t> ids;
  std::vector<float> values;
  ids.reserve(order.size());
  values.reserve(order.size() * dimension_);
  for (std::size_t i = 0; i < order.size(); ++i) {
    // Among equal corners the stable sort keeps arrival order: the last one set wins.
    if (i + 1 < order.size() && cornerIds_[order[i + 1]] == cornerIds_[order[i]]) continue;
    ids.push_back(cornerIds_[order[i]]);
    const float* v = cornerValues_.data() + std::size_t(order[i]) * dimension_;
    values.insert(values.end(), v, v + dimension_);
  }
  cornerIds_ = std::move(ids);
  cornerValues_ = std::move(values);
  cornersSorted_ = true;
}

std::size_t VertexMap::cornerValueCount() const { return cornerIds().size(); }

const std::vector<std::uint32_t>& VertexMap::cornerIds() const {
  sortCorners();
  return cornerIds_;
}

const float* VertexMap::cornerValue(std::uint32_t corner) const {
  const std::vector<std::uint32_t>& ids = cornerIds();
  auto it = std::lower_bound(ids.begin(), ids.end(), corner);
  if (it == ids.end() || *it != corner) return nullptr;
  return cornerValueAt(std::size_t(it - ids.begin()));
}

}  // namespace vexo
