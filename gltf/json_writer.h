// The top-level writer: the root object of the file, assembled from the
// document's arrays and the ones numbered at write time, in the file's key order.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "gltf/document_impl.h"

namespace gltf {

class JsonRoot {
 public:
  // `bufferUri` is the ".bin" file's name, or empty for a ".glb".
  JsonRoot(const GltfDocument::Impl& d, const std::string& bufferUri);

  // Emits the root through any RapidJSON writer; false when the writer failed.
  template <class Writer>
  bool accept(Writer& writer) const {
    if (!writer.StartObject()) return false;
    for (const auto& [key, value] : members_) {
      if (!writer.Key(key) || !value->Accept(writer)) return false;
    }
    return writer.EndObject();
  }

  // The compact JSON text.
  std::string toJson() const;

 private:
  void add(const char* key, const Value& value) { members_.emplace_back(key, &value); }

  Allocator allocator_{kChunkSize};
  Value asset_{rapidjson::kObjectType};
  Value scene_{0u};
  Value extensionsUsed_{rapidjson::kArrayType};
  Value scenes_{rapidjson::kArrayType};
  Value nodes_{rapidjson::kArrayType};
  Value meshes_{rapidjson::kArrayType};
  Value buffers_{rapidjson::kArrayType};
  Value animations_{rapidjson::kArrayType};
  Value skins_{rapidjson::kArrayType};
  std::vector<std::pair<const char*, const Value*>> members_;
};

// The buffer's "uri": the ".bin" file's bare name with separate files, else empty.
std::string bufferUriFor(const GltfDocument::Impl& d, const std::string& destination);

// The two file writers; each records its failure in `error`.
bool writeGltf(const GltfDocument::Impl& d, const std::string& destination, std::string& error);
bool writeGlb(const GltfDocument::Impl& d, const std::string& destination, std::string& error);

}  // namespace gltf
