// What the shader tree links beyond item channels: each image clip's file,
// and each image map's clip and texture locator.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "shading/image_header.h"

namespace vexo {

class Item;

class ShadingStore {
 public:
  // Gives a clip its image file, a full path. The header is read on first use.
  void setClipFile(const Item& clip, std::string path);
  // The clip's file path; null when the clip has none.
  const std::string* clipFile(const Item& clip) const;
  // The header of the clip's file, read once and kept. Null when the clip has
  // no file or the file is missing, unreadable or of an unknown format.
  const ImageHeader* clipHeader(const Item& clip) const;

  void setLayerClip(const Item& layer, Item& clip) { layerClips_[&layer] = &clip; }
  void setLayerLocator(const Item& layer, Item& locator) { layerLocators_[&layer] = &locator; }
  // An image map's clip and texture locator; null when it has none.
  Item* layerClip(const Item& layer) const;
  Item* layerLocator(const Item& layer) const;

 private:
  struct ClipFile {
    std::string path;
    mutable std::optional<bool> readable;  // unset until the header is read
    mutable ImageHeader header;
  };
  std::unordered_map<const Item*, ClipFile> clipFiles_;
  std::unordered_map<const Item*, Item*> layerClips_;
  std::unordered_map<const Item*, Item*> layerLocators_;
};

}  // namespace vexo
