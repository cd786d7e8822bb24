#include <cerrno>
#include <cstring>
#include <limits>

#include "gltf/block_writer.h"
#include "gltf/json_writer.h"

namespace gltf {

namespace {

constexpr std::uint32_t kMagic = 0x46546C67;      // "glTF"
constexpr std::uint32_t kJsonChunk = 0x4E4F534A;  // "JSON"
constexpr std::uint32_t kBinChunk = 0x004E4942;   // "BIN\0"

constexpr std::uint64_t padTo4(std::uint64_t n) { return (4 - n % 4) % 4; }

bool writeWords(StagedFile& out, std::initializer_list<std::uint32_t> words) {
  for (const std::uint32_t word : words) {
    const unsigned char bytes[4] = {static_cast<unsigned char>(word), static_cast<unsigned char>(word >> 8),
                                    static_cast<unsigned char>(word >> 16), static_cast<unsigned char>(word >> 24)};
    if (!out.write(bytes, 4)) return false;
  }
  return true;
}

}  // namespace

bool writeGlb(const GltfDocument::Impl& d, const std::string& destination, std::string& error) {
  // The JSON goes first in the file, so its length must be known before.
  const std::string json = JsonRoot(d, std::string()).toJson();
  const std::uint64_t jsonLength = json.size() + padTo4(json.size());
  std::uint64_t blockLength = 0;
  for (const Block& block : d.blocks) blockLength += block.byteLength;
  const std::uint64_t binaryLength = blockLength + padTo4(blockLength);
  const std::uint64_t total = 12 + 8 + jsonLength + 8 + binaryLength;
  if (total > std::numeric_limits<std::uint32_t>::max()) {
    error = "Cannot write " + destination + ": " + std::strerror(EFBIG);
    return false;
  }

  StagedFiles files;
  StagedFile* out = files.create(destination);
  const bool ok = out &&
                  writeWords(*out, {kMagic, 2, static_cast<std::uint32_t>(total),
                                    static_cast<std::uint32_t>(jsonLength), kJsonChunk}) &&
                  out->write(json.data(), json.size()) &&
                  out->write("   ", static_cast<std::size_t>(jsonLength - json.size())) &&
                  writeWords(*out, {static_cast<std::uint32_t>(binaryLength), kBinChunk}) &&
                  writeBlocks(d.blocks, *out, files) &&
                  out->writeZeros(static_cast<std::size_t>(binaryLength - blockLength)) && files.finish(*out) &&
                  files.commit();
  if (!ok) error = files.error();
  return ok;
}

}  // namespace gltf
