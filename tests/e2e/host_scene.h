// The headless host's own view of a scene file, for comparing what was
// exported with what the host evaluates.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

// One triangle corner of a host mesh with every value the export reads.
struct HostCorner {
  std::string tag;                         // the polygon's material tag
  std::array<double, 3> position{};
  std::array<double, 3> normal{};          // the first "NORM" map's value, else the host's smoothed normal
  std::vector<std::array<float, 2>> uvs;   // "TXUV" maps sorted by name; a missing value reads 0, 0
  std::vector<std::array<float, 4>> colours;  // "RGB " maps (alpha 1), then "RGBA" maps; missing: 0, 0, 0, 0
  std::array<float, 6> tangentBasis{};     // the first "TBAS" map's value
};

class HostScene {
 public:
  explicit HostScene(const std::string& path);
  ~HostScene();

  bool ok() const { return error_.empty(); }
  const std::string& error() const { return error_; }
  // The world matrix of the one item with this name, as the host evaluates it
  // in the "edit" action at the scene's time; for an item that is no locator,
  // that of its nearest locator ancestor (the identity without one). False
  // when there is no such item.
  bool worldMatrix(const std::string& name, std::array<double, 16>& matrix) const;
  // Every triangle corner of the item's mesh, polygon by polygon in the
  // host's triangulation order; false when the item has no mesh.
  bool meshCorners(const std::string& name, std::vector<HostCorner>& corners) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
  std::string error_;
};
