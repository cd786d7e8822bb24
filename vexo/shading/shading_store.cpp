#include "shading/shading_store.h"

namespace vexo {

void ShadingStore::setClipFile(const Item& clip, std::string path) {
  clipFiles_[&clip] = ClipFile{std::move(path), std::nullopt, ImageHeader()};
}

const std::string* ShadingStore::clipFile(const Item& clip) const {
  auto it = clipFiles_.find(&clip);
  return it == clipFiles_.end() ? nullptr : &it->second.path;
}

// Lazily, so that loading a scene never waits on its images and a missing file is no load error.
const ImageHeader* ShadingStore::clipHeader(const Item& clip) const {
  auto it = clipFiles_.find(&clip);
  if (it == clipFiles_.end()) return nullptr;
  const ClipFile& file = it->second;
  if (!file.readable) file.readable = readImageHeader(file.path, file.header);
  return *file.readable ? &file.header : nullptr;
}

Item* ShadingStore::layerClip(const Item& layer) const {
  auto it = layerClips_.find(&layer);
  return it == layerClips_.end() ? nullptr : it->second;
}

Item* ShadingStore::layerLocator(const Item& layer) const {
  auto it = layerLocators_.find(&layer);
  return it == layerLocators_.end() ? nullptr : it->second;
}

}  // namespace vexo
