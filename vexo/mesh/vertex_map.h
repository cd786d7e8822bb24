// One vertex map of a mesh: continuous values per point and discontinuous
// values per polygon corner, `dimension()` floats each.
//
// A corner is one vertex slot of one polygon, numbered across the mesh in
// polygon order (see MeshData::firstCorner). Values are written through
// MeshData, which checks point and corner numbers against the mesh.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vexo {

class VertexMap {
 public:
  VertexMap(std::uint32_t type, std::string name, unsigned dimension);

  std::uint32_t type() const { return type_; }
  const std::string& name() const { return name_; }
  unsigned dimension() const { return dimension_; }

  // How many points have a value.
  std::size_t pointValueCount() const { return pointValueCount_; }
  // How many corners have a value (a corner set twice counts once).
  std::size_t cornerValueCount() const;

  // The point's value, or null when it has none.
  const float* pointValue(std::uint32_t point) const {
    if (point >= pointCapacity_ || !(pointHas_[point >> 6] >> (point & 63) & 1u)) return nullptr;
    return pointValues_.data() + std::size_t(point) * dimension_;
  }
  // The corner's value, or null when it has none (binary search).
  const float* cornerValue(std::uint32_t corner) const;

  // Corner values ordered by corner, each corner once: entry i holds corner
  // cornerIds()[i] with the value at cornerValueAt(i). Walks in polygon order
  // use these directly instead of searching.
  const std::vector<std::uint32_t>& cornerIds() const;
  const float* cornerValueAt(std::size_t entry) const { return cornerValues_.data() + entry * dimension_; }

  // The dense point values, `dimension()` floats for each of the first
  // `pointCapacity()` points, and a presence bit per point (bit p & 63 of
  // word p >> 6); points past the capacity have no value.
  std::size_t pointCapacity() const { return pointCapacity_; }
  const float* pointValueData() const { return pointValues_.data(); }
  const std::uint64_t* pointHasBits() const { return pointHas_.data(); }

 private:
  friend class MeshData;

  void setPointValue(std::uint32_t point, const float* values, std::size_t pointCount);
  void addCornerValue(std::uint32_t corner, const float* values);
  void sortCorners() const;

  std::uint32_t type_;
  std::string name_;
  unsigned dimension_;

  // Dense per point once the first point value arrives, with a presence bit per point.
  std::vector<float> pointValues_;
  std::vector<std::uint64_t> pointHas_;
  std::size_t pointCapacity_ = 0;
  std::size_t pointValueCount_ = 0;

  // Sparse per corner: usually a few seams, sometimes every corner. Kept in
  // arrival order and sorted (later values winning) when first read.
  mutable std::vector<std::uint32_t> cornerIds_;
  mutable std::vector<float> cornerValues_;
  mutable bool cornersSorted_ = true;
};

}  // namespace vexo
