#include "gltf/block_writer.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace gltf {

namespace {

constexpr std::size_t kCopyChunk = 65536;

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using InputFile = std::unique_ptr<std::FILE, FileCloser>;

void failRead(const std::string& path, std::FILE* in, StagedFiles& files) {
  if (!in || std::ferror(in)) {
    files.fail("Cannot read " + path + ": " + std::strerror(errno != 0 ? errno : EIO));
  } else {
    files.fail("Cannot read " + path + ": the file is shorter than when it was added");
  }
}

// Streams `size` bytes (or, with `whole`, everything) from `path` into `out`.
bool pipe(const std::string& path, std::uint64_t size, bool whole, StagedFile& out, StagedFiles& files) {
  errno = 0;
  InputFile in(std::fopen(path.c_str(), "rb"));
  if (!in) {
    failRead(path, nullptr, files);
    return false;
  }
  std::unique_ptr<unsigned char[]> chunk(new unsigned char[kCopyChunk]);
  while (whole || size > 0) {
    const std::size_t want = whole || size > kCopyChunk ? kCopyChunk : static_cast<std::size_t>(size);
    const std::size_t got = std::fread(chunk.get(), 1, want, in.get());
    if (got < want && (std::ferror(in.get()) || !whole)) {
      failRead(path, in.get(), files);
      return false;
    }
    if (!out.write(chunk.get(), got)) return false;
    if (whole && got < want) break;
    if (!whole) size -= got;
  }
  return true;
}

}  // namespace

bool writeBlocks(const std::vector<Block>& blocks, StagedFile& out, StagedFiles& files) {
  for (const Block& block : blocks) {
    const bool written = block.kind == GltfBlockKind::Image
                             ? pipe(block.imagePath, block.byteLength - block.padding, false, out, files)
                             : out.write(block.data(), block.size());
    if (!written || !out.writeZeros(block.padding)) return false;
  }
  return true;
}

bool copyFile(const std::string& source, const std::string& target, StagedFiles& files) {
  struct stat from {};
  struct stat to {};
  if (::stat(source.c_str(), &from) == 0 && ::stat(target.c_str(), &to) == 0 && from.st_dev == to.st_dev &&
      from.st_ino == to.st_ino) {
    return true;
  }
  StagedFile* out = files.create(target);
  return out && pipe(source, 0, true, *out, files) && files.finish(*out);
}

}  // namespace gltf
