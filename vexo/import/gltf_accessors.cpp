#include "import/gltf_accessors.h"

#include <cmath>
#include <cstring>

#include "import/tiny_gltf_include.h"

namespace vexo {
namespace {

using tinygltf::Accessor;
using tinygltf::Model;

int componentSize(int componentType) {
  switch (componentType) {
    case TINYGLTF_COMPONENT_TYPE_BYTE:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return 1;
    case TINYGLTF_COMPONENT_TYPE_SHORT:
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
      return 2;
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
    case TINYGLTF_COMPONENT_TYPE_FLOAT:
      return 4;
    default:
      return 0;
  }
}

int componentCount(int type) {
  switch (type) {
    case TINYGLTF_TYPE_SCALAR: return 1;
    case TINYGLTF_TYPE_VEC2: return 2;
    case TINYGLTF_TYPE_VEC3: return 3;
    case TINYGLTF_TYPE_VEC4: return 4;
    case TINYGLTF_TYPE_MAT2: return 4;
    case TINYGLTF_TYPE_MAT3: return 9;
    case TINYGLTF_TYPE_MAT4: return 16;
    default: return 0;
  }
}

// One component as a double: normalised integers scaled as glTF defines them.
double component(const unsigned char* at, int componentType, bool normalized) {
  switch (componentType) {
    case TINYGLTF_COMPONENT_TYPE_BYTE: {
      std::int8_t v;
      std::memcpy(&v, at, 1);
      return normalized ? std::fmax(v / 127.0, -1.0) : v;
    }
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
      return normalized ? *at / 255.0 : *at;
    case TINYGLTF_COMPONENT_TYPE_SHORT: {
      std::int16_t v;
      std::memcpy(&v, at, 2);
      return normalized ? std::fmax(v / 32767.0, -1.0) : v;
    }
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT: {
      std::uint16_t v;
      std::memcpy(&v, at, 2);
      return normalized ? v / 65535.0 : v;
    }
    case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT: {
      std::uint32_t v;
      std::memcpy(&v, at, 4);
      return v;
    }
    default: {
      float v;
      std::memcpy(&v, at, 4);
      return v;
    }
  }
}

// Where `count` elements of `elementSize` bytes, `stride` apart, start in a
// buffer view's buffer; null with `error` set when any of them lies outside.
const unsigned char* viewData(const Model& model, int viewIndex, std::size_t offset, std::size_t count,
                              std::size_t elementSize, std::size_t& stride, const std::string& what,
                              std::string& error) {
  if (viewIndex < 0 || static_cast<std::size_t>(viewIndex) >= model.bufferViews.size()) {
    error = what + " names buffer view " + std::to_string(viewIndex) + ", which does not exist";
    return nullptr;
  }
  const tinygltf::BufferView& view = model.bufferViews[static_cast<std::size_t>(viewIndex)];
  if (view.buffer < 0 || static_cast<std::size_t>(view.buffer) >= model.buffers.size()) {
    error = what + ": buffer view " + std::to_string(viewIndex) + " names buffer " + std::to_string(view.buffer) +
            ", which does not exist";
    return nullptr;
  }
  const std::vector<unsigned char>& data = model.buffers[static_cast<std::size_t>(view.buffer)].data;
  stride = view.byteStride ? view.byteStride : elementSize;
  if (stride < elementSize) {
    error = what + ": buffer view " + std::to_string(viewIndex) + " has a byte stride of " + std::to_string(stride) +
            ", less than an element's " + std::to_string(elementSize) + " bytes";
    return nullptr;
  }
  const std::size_t span = count == 0 ? 0 : stride * (count - 1) + elementSize;
  // Each sum is checked before it is made, so that huge numbers cannot wrap.
  const bool inView = offset <= view.byteLength && span <= view.byteLength - offset;
  const bool inBuffer = view.byteOffset <= data.size() && view.byteLength <= data.size() - view.byteOffset;
  if (!inView || !inBuffer) {
    error = what + " reaches past the end of its data (buffer view " + std::to_string(viewIndex) + ", buffer " +
            std::to_string(view.buffer) + " of " + std::to_string(data.size()) + " bytes)";
    return nullptr;
  }
  return data.data() + view.byteOffset + offset;
}

// All of an accessor's components as doubles, `components` per element.
bool readAccessor(const Model& model, int index, int components, std::vector<double>& out, std::string& error) {
  const std::string what = "accessor " + std::to_string(index);
  if (index < 0 || static_cast<std::size_t>(index) >= model.accessors.size()) {
    error = what + " does not exist";
    return false;
  }
  const Accessor& accessor = model.accessors[static_cast<std::size_t>(index)];
  const int count = componentCount(accessor.type);
  const int size = componentSize(accessor.componentType);
  if (count != components || size == 0) {
    error = what + " holds " + std::to_string(count) + " components of type " +
            std::to_string(accessor.componentType) + " per element where " + std::to_string(components) +
            " are expected";
    return false;
  }
  const std::size_t elementSize = std::size_t(count) * std::size_t(size);
  if (accessor.count > (std::size_t(1) << 31) / elementSize) {
    error = what + " has too many elements (" + std::to_string(accessor.count) + ")";
    return false;
  }
  out.assign(accessor.count * std::size_t(count), 0.0);
  if (accessor.bufferView >= 0) {
    std::size_t stride = 0;
    const unsigned char* data =
        viewData(model, accessor.bufferView, accessor.byteOffset, accessor.count, elementSize, stride, what, error);
    if (!data) return false;
    for (std::size_t i = 0; i < accessor.count; ++i)
      for (int c = 0; c < count; ++c)
        out[i * std::size_t(count) + std::size_t(c)] =
            component(data + i * stride + std::size_t(c) * std::size_t(size), accessor.componentType, accessor.normalized);
  }
  if (accessor.sparse.isSparse) {
    const auto& sparse = accessor.sparse;
    const int indexSize = componentSize(sparse.indices.componentType);
    if (sparse.count < 0 || indexSize == 0 || sparse.indices.componentType == TINYGLTF_COMPONENT_TYPE_FLOAT ||
        sparse.indices.byteOffset < 0 || sparse.values.byteOffset < 0) {
      error = what + " has a sparse part that cannot be read";
      return false;
    }
    const std::size_t n = static_cast<std::size_t>(sparse.count);
    std::size_t indexStride = 0, valueStride = 0;
    const unsigned char* indices = viewData(model, sparse.indices.bufferView, std::size_t(sparse.indices.byteOffset),
                                            n, std::size_t(indexSize), indexStride, what + "'s sparse indices", error);
    if (!indices) return false;
    const unsigned char* values = viewData(model, sparse.values.bufferView, std::size_t(sparse.values.byteOffset), n,
                                           elementSize, valueStride, what + "'s sparse values", error);
    if (!values) return false;
    for (std::size_t k = 0; k < n; ++k) {
      const double at = component(indices + k * std::size_t(indexSize), sparse.indices.componentType, false);
      if (at >= static_cast<double>(accessor.count)) {
        error = what + "'s sparse index " + std::to_string(static_cast<std::uint64_t>(at)) + " is out of range";
        return false;
      }
      const std::size_t element = static_cast<std::size_t>(at);
      for (int c = 0; c < count; ++c)
        out[element * std::size_t(count) + std::size_t(c)] =
            component(values + k * elementSize + std::size_t(c) * std::size_t(size), accessor.componentType,
                      accessor.normalized);
    }
  }
  return true;
}

}  // namespace

bool readAccessorFloats(const Model& model, int accessor, int components, std::vector<float>& out, std::string& error) {
  std::vector<double> values;
  if (!readAccessor(model, accessor, components, values, error)) return false;
  out.resize(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!std::isfinite(values[i])) {
      error = "accessor " + std::to_string(accessor) + " holds a value that is not finite at element " +
              std::to_string(i / std::size_t(components));
      return false;
    }
    out[i] = static_cast<float>(values[i]);
  }
  return true;
}

bool readAccessorIndices(const Model& model, int accessor, int components, std::vector<std::uint32_t>& out,
                         std::string& error) {
  if (accessor >= 0 && static_cast<std::size_t>(accessor) < model.accessors.size()) {
    const Accessor& a = model.accessors[static_cast<std::size_t>(accessor)];
    if (a.componentType == TINYGLTF_COMPONENT_TYPE_FLOAT || a.normalized) {
      error = "accessor " + std::to_string(accessor) + " holds " + (a.normalized ? "normalized" : "float") +
              " values where whole numbers are expected";
      return false;
    }
  }
  std::vector<double> values;
  if (!readAccessor(model, accessor, components, values, error)) return false;
  out.resize(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] < 0) {
      error = "accessor " + std::to_string(accessor) + " holds a negative number where indices are expected";
      return false;
    }
    out[i] = static_cast<std::uint32_t>(values[i]);
  }
  return true;
}

}  // namespace vexo
