#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "gltf/document_impl.h"

using gltf::Value;

namespace {

const char* const kTypeNames[] = {"SCALAR", "VEC2", "VEC3", "VEC4", "MAT2", "MAT3", "MAT4"};
const std::uint32_t kComponents[] = {1, 2, 3, 4, 4, 9, 16};

// 0 for a type outside the table, which every caller refuses.
std::uint32_t componentsOf(GltfAccessorType type) {
  const auto code = static_cast<std::uint32_t>(type);
  return code < sizeof kComponents / sizeof kComponents[0] ? kComponents[code] : 0;
}

std::uint32_t widthOf(GltfBlockKind kind) {
  switch (kind) {
    case GltfBlockKind::UInt16:
      return 2;
    case GltfBlockKind::UInt32:
    case GltfBlockKind::Float32:
      return 4;
    default:
      return 0;
  }
}

#if !(defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__)
// The buffer is little-endian whatever the machine is.
void putLittleEndian(unsigned char* out, std::uint32_t value, std::uint32_t width) {
  for (std::uint32_t i = 0; i < width; ++i) out[i] = static_cast<unsigned char>(value >> (8 * i));
}
#endif

// gltf::toFloat of a value that is a float already, inlined for the big arrays.
inline float roundedFloat(float v) {
  constexpr float kMax = std::numeric_limits<float>::max();
  if (std::isnan(v)) return 0.0f;
  return v > kMax ? kMax : v < -kMax ? -kMax : v;
}

}  // namespace

std::uint32_t GltfDocument::addBlock(GltfBlockKind kind, const void* values, std::uint32_t valueCount) {
  const std::uint32_t width = widthOf(kind);
  if (width == 0 || (valueCount != 0 && !values)) return 0;
  const std::uint64_t dataLength = std::uint64_t{valueCount} * width;
  const std::uint64_t byteLength = (dataLength + 3) & ~std::uint64_t{3};
  if (byteLength > std::numeric_limits<std::uint32_t>::max()) return 0;

  gltf::Block block;
  block.kind = kind;
  block.valueCount = valueCount;
  block.byteLength = static_cast<std::uint32_t>(byteLength);
  block.padding = static_cast<std::uint32_t>(byteLength - dataLength);
  block.bytes.resize(dataLength);
  const auto* in = static_cast<const unsigned char*>(values);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // The values are already in the buffer's byte order.
  if (dataLength != 0) std::memcpy(block.bytes.data(), in, dataLength);
#else
  for (std::uint32_t i = 0; i < valueCount; ++i) {
    std::uint32_t value = 0;
    if (width == 2) {
      std::uint16_t v16;
      std::memcpy(&v16, in + 2 * std::size_t{i}, 2);
      value = v16;
    } else {
      std::memcpy(&value, in + 4 * std::size_t{i}, 4);
    }
    putLittleEndian(block.bytes.data() + std::size_t{width} * i, value, width);
  }
#endif
  impl_->blocks.push_back(std::move(block));
  return static_cast<std::uint32_t>(byteLength);
}

std::uint32_t GltfDocument::growBuffer(std::uint32_t byteLength) {
  const std::uint64_t old = impl_->bufferLength;
  impl_->bufferLength += byteLength;
  return static_cast<std::uint32_t>(old);
}

std::uint32_t GltfDocument::addBufferView(std::uint32_t buffer, std::uint32_t byteLength, std::uint32_t byteOffset,
                                          std::uint32_t byteStride, std::uint32_t target) {
  Impl& d = *impl_;
  Value view(rapidjson::kObjectType);
  gltf::addMember(view, "buffer", buffer, d.allocator);
  gltf::addMember(view, "byteLength", byteLength, d.allocator);
  if (byteOffset != 0) gltf::addMember(view, "byteOffset", byteOffset, d.allocator);
  if (byteStride != 0) gltf::addMember(view, "byteStride", byteStride, d.allocator);
  if (target != 0) gltf::addMember(view, "target", target, d.allocator);
  return d.appendTo(d.bufferViews, view);
}

std::uint32_t GltfDocument::addAccessor(std::uint32_t bufferView, GltfAccessorType type, std::uint32_t componentType,
                                        std::uint32_t count, std::uint32_t byteOffset, const std::vector<float>& min,
                                        const std::vector<float>& max) {
  Impl& d = *impl_;
  if (componentsOf(type) == 0) return kNone;
  Value accessor(rapidjson::kObjectType);
  gltf::addMember(accessor, "bufferView", bufferView, d.allocator);
  if (byteOffset != 0) gltf::addMember(accessor, "byteOffset", byteOffset, d.allocator);
  gltf::addMember(accessor, "type", Value(rapidjson::StringRef(kTypeNames[static_cast<std::uint32_t>(type)])),
                  d.allocator);
  gltf::addMember(accessor, "componentType", componentType, d.allocator);
  gltf::addMember(accessor, "count", count, d.allocator);
  if (!min.empty()) gltf::addMember(accessor, "min", gltf::numbers(min.data(), min.size(), d.allocator), d.allocator);
  if (!max.empty()) gltf::addMember(accessor, "max", gltf::numbers(max.data(), max.size(), d.allocator), d.allocator);
  return d.appendTo(d.accessors, accessor);
}

std::uint32_t GltfDocument::Impl::addPayload(GltfBlockKind kind, const void* values, std::uint32_t valueCount,
                                             GltfAccessorType type, std::uint32_t componentType,
                                             const std::vector<float>& min, const std::vector<float>& max) {
  // Always the same four steps in the same order, so views follow the blocks.
  GltfDocument& doc = *owner;
  const std::uint32_t components = componentsOf(type);
  if (components == 0 || valueCount == 0 || valueCount % components != 0) return kNone;
  const std::uint32_t byteLength = doc.addBlock(kind, values, valueCount);
  // A block that could not be added gets no view and no accessor.
  if (byteLength == 0) return kNone;
  const std::uint32_t offset = doc.growBuffer(byteLength);
  const std::uint32_t view = doc.addBufferView(0, byteLength, offset, 0, 0);
  return doc.addAccessor(view, type, componentType, valueCount / components, 0, min, max);
}

template <typename T>
std::uint32_t GltfDocument::Impl::keepPayload(GltfBlockKind kind, std::vector<T>&& values, GltfAccessorType type,
                                              std::uint32_t componentType, const std::vector<float>& min,
                                              const std::vector<float>& max) {
  const auto valueCount = static_cast<std::uint32_t>(values.size());
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  // The same checks and steps as addPayload, without copying the values.
  static_assert(sizeof(T) == 4, "4-byte values only");
  GltfDocument& doc = *owner;
  const std::uint32_t components = componentsOf(type);
  if (components == 0 || valueCount == 0 || valueCount % components != 0 || widthOf(kind) != sizeof(T)) return kNone;
  const std::uint64_t dataLength = std::uint64_t{valueCount} * sizeof(T);
  const std::uint64_t byteLength = (dataLength + 3) & ~std::uint64_t{3};
  if (byteLength > std::numeric_limits<std::uint32_t>::max()) return kNone;
  gltf::Block block;
  block.kind = kind;
  block.valueCount = valueCount;
  block.byteLength = static_cast<std::uint32_t>(byteLength);
  block.padding = static_cast<std::uint32_t>(byteLength - dataLength);
  block.keep(std::move(values));
  blocks.push_back(std::move(block));
  const std::uint32_t offset = doc.growBuffer(static_cast<std::uint32_t>(byteLength));
  const std::uint32_t view = doc.addBufferView(0, static_cast<std::uint32_t>(byteLength), offset, 0, 0);
  return doc.addAccessor(view, type, componentType, valueCount / components, 0, min, max);
#else
  return addPayload(kind, values.data(), valueCount, type, componentType, min, max);
#endif
}

std::uint32_t GltfDocument::addFloatAccessor(GltfAccessorType type, std::vector<float>&& values, bool bounds) {
  const std::uint32_t n = componentsOf(type);
  if (n == 0 || values.empty() || values.size() % n != 0 || values.size() > std::numeric_limits<std::uint32_t>::max() / 4) {
    return kNone;
  }
  // Rounding and the bounds in one pass over the values.
  float low[16], high[16];
  for (std::uint32_t c = 0; c < n; ++c) low[c] = high[c] = values[c] = roundedFloat(values[c]);
  const std::size_t size = values.size();
  float* v = values.data();
  if (bounds) {
    for (std::size_t i = n; i < size; i += n) {
      for (std::uint32_t c = 0; c < n; ++c) {
        const float rounded = v[i + c] = roundedFloat(v[i + c]);
        low[c] = std::min(low[c], rounded);
        high[c] = std::max(high[c], rounded);
      }
    }
  } else {
    for (std::size_t i = n; i < size; ++i) v[i] = roundedFloat(v[i]);
  }
  std::vector<float> min, max;
  if (bounds) {
    min.assign(low, low + n);
    max.assign(high, high + n);
  }
  return impl_->keepPayload(GltfBlockKind::Float32, std::move(values), type, kFloat, min, max);
}

std::uint32_t GltfDocument::addFloatAccessor(GltfAccessorType type, const std::vector<float>& values, bool bounds) {
  return addFloatAccessor(type, std::vector<float>(values), bounds);
}

std::uint32_t GltfDocument::addFloatAccessor(GltfAccessorType type, const std::vector<double>& values, bool bounds) {
  std::vector<float> rounded(values.size());
  std::transform(values.begin(), values.end(), rounded.begin(), gltf::toFloat);
  return addFloatAccessor(type, std::move(rounded), bounds);
}

std::uint32_t GltfDocument::addUShortAccessor(GltfAccessorType type, const std::vector<std::uint16_t>& values) {
  const std::uint32_t n = componentsOf(type);
  if (n == 0 || values.empty() || values.size() % n != 0 || values.size() > std::numeric_limits<std::uint32_t>::max() / 2) {
    return kNone;
  }
  return impl_->addPayload(GltfBlockKind::UInt16, values.data(), static_cast<std::uint32_t>(values.size()), type,
                           kUnsignedShort, {}, {});
}

std::uint32_t GltfDocument::addIndexAccessor(std::vector<std::uint32_t>&& indices) {
  if (impl_->settings.indices32 == 0) return addIndexAccessor(static_cast<const std::vector<std::uint32_t>&>(indices));
  if (indices.empty() || indices.size() > std::numeric_limits<std::uint32_t>::max() / 4) return kNone;
  return impl_->keepPayload(GltfBlockKind::UInt32, std::move(indices), GltfAccessorType::Scalar, kUnsignedInt, {}, {});
}

std::uint32_t GltfDocument::addIndexAccessor(const std::vector<std::uint32_t>& indices) {
  if (indices.empty() || indices.size() > std::numeric_limits<std::uint32_t>::max() / 4) return kNone;
  const auto count = static_cast<std::uint32_t>(indices.size());
  if (impl_->settings.indices32 != 0) return addIndexAccessor(std::vector<std::uint32_t>(indices));
  std::vector<std::uint16_t> narrow(indices.size());
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (indices[i] > 0xffffu) return kNone;
    narrow[i] = static_cast<std::uint16_t>(indices[i]);
  }
  return impl_->addPayload(GltfBlockKind::UInt16, narrow.data(), count, GltfAccessorType::Scalar, kUnsignedShort, {},
                           {});
}

std::uint32_t GltfDocument::bufferByteLength() const { return static_cast<std::uint32_t>(impl_->bufferLength); }
std::uint32_t GltfDocument::accessorCount() const { return impl_->accessors.Size(); }
std::uint32_t GltfDocument::bufferViewCount() const { return impl_->bufferViews.Size(); }
