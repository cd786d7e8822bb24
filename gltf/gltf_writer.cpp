#include <rapidjson/filewritestream.h>
#include <rapidjson/writer.h>

#include "gltf/block_writer.h"
#include "gltf/json_writer.h"
#include "gltf/paths.h"

namespace gltf {

bool writeGltf(const GltfDocument::Impl& d, const std::string& destination, std::string& error) {
  const std::string stem = pathStem(destination);
  const std::string jsonPath = stem + ".gltf";
  const std::string binaryPath = stem + ".bin";
  const JsonRoot root(d, bufferUriFor(d, destination));

  StagedFiles files;
  bool ok = false;
  if (StagedFile* json = files.create(jsonPath)) {
    char buffer[1000];
    rapidjson::FileWriteStream stream(json->stream(), buffer, sizeof buffer);
    rapidjson::Writer<rapidjson::FileWriteStream> writer(stream);
    root.accept(writer);
    stream.Flush();
    ok = files.finish(*json);
  }
  if (ok) {
    StagedFile* binary = files.create(binaryPath);
    ok = binary && writeBlocks(d.blocks, *binary, files) && files.finish(*binary);
  }
  // Image uris are bare names, so the files go beside the ".gltf".
  const std::string folder = pathFolder(jsonPath);
  for (const ImageFile& image : d.imageFiles) {
    ok = ok && copyFile(image.path, folder + pathFileName(image.path), files);
  }
  ok = ok && files.commit();
  if (!ok) error = files.error();
  return ok;
}

}  // namespace gltf
