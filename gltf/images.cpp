#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "gltf/document_impl.h"
#include "gltf/paths.h"

using gltf::Value;

namespace {

const char* mimeTypeOf(std::uint32_t format) {
  switch (format) {
    case 1:
      return "image/png";
    case 2:
      return "image/jpeg";
    default:
      return nullptr;
  }
}

// The size of a regular file that can be opened for reading, or -1.
long long readableFileSize(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return -1;
  struct stat info {};
  const bool regular = ::fstat(fd, &info) == 0 && S_ISREG(info.st_mode);
  ::close(fd);
  return regular ? static_cast<long long>(info.st_size) : -1;
}

}  // namespace

std::uint32_t GltfDocument::addImage(const std::string& path, std::uint32_t format) {
  Impl& d = *impl_;
  const auto known = d.imageByPath.find(path);
  if (known != d.imageByPath.end()) return known->second;

  const long long size = readableFileSize(path);
  // An empty file is no image, and the padded block must fit 32-bit lengths.
  if (size <= 0 || size > std::numeric_limits<std::uint32_t>::max() - 3) {
    d.warning("Image file path: " + path + " doesn't exist!");
    d.imageByPath.emplace(path, kNone);
    return kNone;
  }

  Value image(rapidjson::kObjectType);
  if (const char* mimeType = mimeTypeOf(format)) {
    gltf::addMember(image, "mimeType", Value(rapidjson::StringRef(mimeType)), d.allocator);
  }
  const auto fileSize = static_cast<std::uint32_t>(size);
  if (d.settings.separateFiles != 0) {
    // The copy lands beside the ".gltf", so the bare name resolves.
    gltf::addMember(image, "uri", gltf::text(gltf::uriFromFileName(gltf::pathFileName(path)), d.allocator),
                    d.allocator);
  } else {
    gltf::Block block;
    block.kind = GltfBlockKind::Image;
    block.padding = (4 - fileSize % 4) % 4;
    block.byteLength = fileSize + block.padding;
    block.imagePath = path;
    d.blocks.push_back(std::move(block));
    const std::uint32_t offset = growBuffer(d.blocks.back().byteLength);
    // The view covers the file alone, not the padding after it.
    gltf::addMember(image, "bufferView", addBufferView(0, fileSize, offset, 0, 0), d.allocator);
  }
  const std::uint32_t index = d.appendTo(d.images, image);
  d.imageFiles.push_back({path, fileSize});
  d.imageByPath.emplace(path, index);
  return index;
}

