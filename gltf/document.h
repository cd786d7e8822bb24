// GltfDocument: the one in-memory glTF 2.0 asset of an export, and its writer.
//
// Records are appended, never removed, and refer to one another by index; the
// all-ones index (kNone) means none. Every index handed out is dense and starts
// at 0 in its array. Every operation that takes an index or handle accepts a bad
// one without harm: it does nothing and returns kNone (or false).
//
// Numbers: factors, coordinates and matrices are rounded to single precision
// before they reach the JSON or the binary buffer, and the JSON shows the double
// of that float (0.1 prints as 0.10000000149011612, 1 as 1.0). Neither can hold
// NaN or infinity: NaN becomes 0, anything beyond the float range the largest
// float of its sign.
//
// Binary payload: every payload becomes one block of buffer 0, a bufferView over
// exactly that block and an accessor over the view, in that order. Blocks are
// padded with zero bytes to a multiple of 4, so every view starts 4-aligned.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gltf/report.h"

inline constexpr std::uint32_t kGltfNone = 0xffffffffu;

// A node transform as glTF's translation, rotation (x, y, z, w) and scale.
struct GltfTrs {
  double translation[3];
  double rotation[4];
  double scale[3];
};

struct GltfSettings {
  std::int32_t separateFiles;    // non-zero: ".gltf" + ".bin"; zero: one ".glb"
  std::int32_t indices32;        // non-zero: every index accessor is unsigned int, else unsigned short
  std::int32_t skinnedMeshInWS;  // 1: a node with a skin of >= 1 joint is written as rotation/translation/scale
  GltfReporter* log;             // may be null: messages are then dropped
};

// Accessor "type" codes.
enum class GltfAccessorType : std::uint32_t { Scalar = 0, Vec2 = 1, Vec3 = 2, Vec4 = 3, Mat2 = 4, Mat3 = 5, Mat4 = 6 };

// What a binary block holds; the numbers are the block kinds of the buffer layout.
enum class GltfBlockKind : std::uint32_t { Nothing = 0, UInt16 = 1, UInt32 = 2, Float32 = 3, Image = 4 };

// Animation curve kinds; the numbers are those of the channel paths.
enum class GltfCurveKind : std::uint32_t { Translation = 1, Rotation = 2, Scale = 3, Weights = 4 };

struct GltfAttribute {
  std::string name;  // "POSITION", "NORMAL", "COLOR_0", "TEXCOORD_0", "TANGENT", "JOINTS_0", "WEIGHTS_0", ...
  std::uint32_t accessor;
};

struct GltfPrimitiveDesc {
  std::uint32_t indices = kGltfNone;   // accessor, or none: no "indices" key
  std::uint32_t mode = 4;                // triangles
  std::uint32_t material = kGltfNone;  // or none: no "material" key
  std::vector<GltfAttribute> attributes;
};

struct GltfTextureRef {
  std::uint32_t index = kGltfNone;  // texture, or none: the material has no such texture key
  std::uint32_t texCoord = 0;
};

// A material as the material phase fills it; the defaults are those of a
// material that has no parameters of its own.
struct GltfMaterialDesc {
  std::string name;
  bool unlit = false;  // adds {"KHR_materials_unlit": {}} and lists the extension as used
  double baseColorFactor[4] = {1.0, 1.0, 1.0, 1.0};
  GltfTextureRef baseColorTexture;
  float metallicFactor = 1.0f;
  float roughnessFactor = 1.0f;
  GltfTextureRef metallicRoughnessTexture;
  double emissiveFactor[3] = {0.0, 0.0, 0.0};
  std::uint32_t alphaMode = 0;  // 0 "OPAQUE", 1 "MASK", 2 "BLEND"
  float alphaCutoff = 0.5f;     // kept with the material; never written
  bool doubleSided = false;
  GltfTextureRef normalTexture;
  double normalScale = 1.0;
  GltfTextureRef occlusionTexture;
  double occlusionStrength = 1.0;
  GltfTextureRef emissiveTexture;
};

class GltfDocument {
 public:
  static constexpr std::uint32_t kNone = kGltfNone;
  static constexpr std::uint32_t kUnsignedShort = 5123;
  static constexpr std::uint32_t kUnsignedInt = 5125;
  static constexpr std::uint32_t kFloat = 5126;

  // An empty document: one scene, buffer 0 of length 0 and the default material
  // ({"pbrMetallicRoughness": {"metallicFactor": 0.5, "roughnessFactor": 0.5}})
  // at index 0, so materials added later start at 1.
  explicit GltfDocument(const GltfSettings& settings);
  ~GltfDocument();
  GltfDocument(const GltfDocument&) = delete;
  GltfDocument& operator=(const GltfDocument&) = delete;

  // --- Nodes -------------------------------------------------------------------
  // Nodes are handles, numbered by the writer depth first in pre-order from the
  // root's children in their order; skins and animations refer to handles too.

  // The handle of the document root. It is not a glTF node: its children are the
  // scene's root nodes.
  std::uint32_t root() const;
  // A new node named `name` (copied; null means ""), appended to the parent's
  // children. The name is written as it is, also when empty. kNone for a bad parent.
  std::uint32_t addNode(std::uint32_t parent, const char* name);
  // The node's transform, a row-major row-vector matrix (translation in 12..14),
  // which is glTF's column-major order. Written as "matrix" (rounded to float)
  // unless it equals the identity exactly, which writes no transform key at all.
  void setNodeMatrix(std::uint32_t node, const double m[16]);
  // Writes the node as "rotation", "translation", "scale" decomposed from its
  // matrix (identity when none was set), even when they are identity, so that
  // animation channels can target it. See gltfDecompose().
  void setNodeAnimated(std::uint32_t node);
  // Writes the node as these "translation", "rotation" (x, y, z, w) and "scale"
  // instead of "matrix", each key left out when it holds glTF's default. For a
  // transform a matrix cannot carry in glTF, such as a scale of 0. The matrix
  // set with setNodeMatrix stays what animation and skins decompose.
  void setNodeTrs(std::uint32_t node, const GltfTrs& parts);
  void setNodeMesh(std::uint32_t node, std::uint32_t mesh);
  void setNodeCamera(std::uint32_t node, std::uint32_t camera);
  // The skin of a skinned mesh node. A skin that ends up with no joint is not
  // written, and neither is the node's "skin" key. With skinnedMeshInWS == 1 a
  // node whose skin has joints is written in the rotation/translation/scale form.
  void setNodeSkin(std::uint32_t node, std::uint32_t skin);

  // The first node created with this name, or kNone.
  std::uint32_t findNode(const char* name) const;

  // --- Cameras -----------------------------------------------------------------
  // {"name", "type": "perspective", "perspective": {"znear", "yfov"}}.
  std::uint32_t addCamera(const char* name, float znear, float yfov);

  // --- Binary payload (buffer 0) -------------------------------------------------
  // The four steps, public so that unusual payloads can be built; the add*Accessor
  // helpers below run all of them in order and are what producers call.

  // Appends a block of `valueCount` values (kinds UInt16, UInt32, Float32; stored
  // little-endian) and returns its byte length: the data rounded up to a
  // multiple of 4 with zero bytes. Other kinds add nothing and return 0.
  std::uint32_t addBlock(GltfBlockKind kind, const void* values, std::uint32_t valueCount);
  // Adds `byteLength` (already a multiple of 4) to buffer 0's "byteLength" and
  // returns the old length, which is the offset of the block just added.
  std::uint32_t growBuffer(std::uint32_t byteLength);
  // {"buffer", "byteLength", ["byteOffset"], ["byteStride"], ["target"]}: each
  // bracketed key only when not 0. Returns the view's index.
  std::uint32_t addBufferView(std::uint32_t buffer, std::uint32_t byteLength, std::uint32_t byteOffset,
                              std::uint32_t byteStride, std::uint32_t target);
  // {"bufferView", ["byteOffset"], "type", "componentType", "count", ["min"],
  // ["max"]}: "byteOffset" only when not 0, "min"/"max" only when not empty.
  std::uint32_t addAccessor(std::uint32_t bufferView, GltfAccessorType type, std::uint32_t componentType,
                            std::uint32_t count, std::uint32_t byteOffset, const std::vector<float>& min,
                            const std::vector<float>& max);

  // A float accessor (5126) over `values`, whose size must be a multiple of the
  // type's component count; count = elements. With `bounds`, "min" and "max" hold
  // the per-component extremes of the values (as for POSITION and key times).
  // kNone when `values` is empty or not a whole number of elements.
  std::uint32_t addFloatAccessor(GltfAccessorType type, const std::vector<float>& values, bool bounds);
  // Same, taking the values over: rounded in place, they become the buffer's
  // block without another copy.
  std::uint32_t addFloatAccessor(GltfAccessorType type, std::vector<float>&& values, bool bounds);
  // Same, from doubles rounded to float.
  std::uint32_t addFloatAccessor(GltfAccessorType type, const std::vector<double>& values, bool bounds);
  // An unsigned-short accessor (5123), e.g. for JOINTS_n. kNone as above.
  std::uint32_t addUShortAccessor(GltfAccessorType type, const std::vector<std::uint16_t>& values);
  // A SCALAR index accessor: unsigned int (5125) when the document's indices32 is
  // set, else unsigned short (5123). kNone when `indices` is empty or, in 16-bit
  // mode, when an index does not fit 16 bits.
  std::uint32_t addIndexAccessor(const std::vector<std::uint32_t>& indices);
  // Same, taking the indices over (kept as the block in 32-bit mode).
  std::uint32_t addIndexAccessor(std::vector<std::uint32_t>&& indices);

  std::uint32_t bufferByteLength() const;
  std::uint32_t accessorCount() const;
  std::uint32_t bufferViewCount() const;

  // --- Meshes ------------------------------------------------------------------
  // {"primitives": [...]}. The mesh's index is fixed now; primitives follow. A
  // mesh that never gets a primitive is not written, nor is any node's "mesh" key
  // pointing at it (later meshes move up one index in the file).
  std::uint32_t addMesh();
  // {["indices"], "mode", ["material"], "attributes"}; attribute keys are ordered
  // POSITION, NORMAL, COLOR_n, TEXCOORD_n, TANGENT, JOINTS_n, WEIGHTS_n (n
  // ascending), other names after them. Returns the primitive's index in the mesh.
  std::uint32_t addPrimitive(std::uint32_t mesh, const GltfPrimitiveDesc& primitive);
  // Adds or replaces one attribute of an existing primitive (e.g. the skin's
  // JOINTS_0 and WEIGHTS_0, which come after the mesh), keeping the key order.
  bool setPrimitiveAttribute(std::uint32_t mesh, std::uint32_t primitive, const std::string& name,
                             std::uint32_t accessor);
  // Sets the primitive's "material" (kNone removes it), keeping the key order.
  bool setPrimitiveMaterial(std::uint32_t mesh, std::uint32_t primitive, std::uint32_t material);
  std::uint32_t primitiveCount(std::uint32_t mesh) const;

  // --- Materials, textures, samplers, images ------------------------------------
  // {"name", "emissiveFactor", "alphaMode", "doubleSided", ["normalTexture"],
  //  ["occlusionTexture"], ["emissiveTexture"], "pbrMetallicRoughness":
  //  {"baseColorFactor", "metallicFactor", "roughnessFactor", ["baseColorTexture"],
  //  ["metallicRoughnessTexture"]}, ["extensions"]}; texture references hold
  // "index", "texCoord", then "scale" (normal) or "strength" (occlusion).
  std::uint32_t addMaterial(const GltfMaterialDesc& material);
  // Rebuilds a material added earlier (not the default material at 0).
  bool setMaterial(std::uint32_t index, const GltfMaterialDesc& material);

  // {["name"], ["sampler"], "source"}: "name" only when not empty, "sampler" only
  // when not kNone. A non-empty `key` seen before returns the stored index and
  // adds nothing. kNone when `source` is kNone: a texture needs an image.
  std::uint32_t addTexture(const std::string& key, const std::string& name, std::uint32_t sampler,
                           std::uint32_t source);
  // {"wrapS", "wrapT"}.
  std::uint32_t addSampler(std::uint32_t wrapS, std::uint32_t wrapT);
  // The image file at `path`. `format` 1 gives "mimeType" "image/png", 2
  // "image/jpeg", anything else no "mimeType". With separate files the record's
  // "uri" is the file's bare name (percent-encoded where a URI needs it) and
  // write() copies the file beside the ".gltf"; in ".glb" the file's bytes become
  // a block with its own bufferView. A path seen before returns the stored index.
  // A file that cannot be opened (or is empty) gives the warning
  // "Image file path: %s doesn't exist!" once, no record and kNone, so the caller
  // leaves the texture out and the output stays valid. In ".gltf" output two
  // images of one file name from different folders land on one copy (the later).
  std::uint32_t addImage(const std::string& path, std::uint32_t format);

  // --- Animations --------------------------------------------------------------
  // {"channels", "samplers", "name"}. Each curve becomes one "LINEAR" sampler
  // (input: key times, SCALAR with one-element "min"/"max"; output: VEC3 for
  // translation and scale, VEC4 for rotation, SCALAR for weights) and one channel
  // {"sampler", "target": {"node", "path"}}. A curve without keys is left out, and
  // an animation without any curve left is not written.
  std::uint32_t addAnimation(const std::string& name);
  // A curve of `kind` on `node`; returns its index within the animation.
  std::uint32_t addCurve(std::uint32_t animation, std::uint32_t node, GltfCurveKind kind);
  // One key: time in seconds and x, y, z (translation, scale), x, y, z, w
  // (rotation) or the weight in v[0].
  void addKey(std::uint32_t animation, std::uint32_t curve, double time, const double v[4]);
  // Turns the animation's curves into accessors; later curves and keys are
  // ignored. write() finishes animations left open.
  void finishAnimation(std::uint32_t animation);

  // --- Skins -------------------------------------------------------------------
  // {"inverseBindMatrices", ["skeleton"], "joints", "name"}.
  std::uint32_t addSkin(const std::string& name);
  // Appends a joint and its inverse bind matrix (row-major row-vector like node
  // matrices); null stands for the identity, keeping joints and matrices in step.
  // Returns the joint's index within the skin.
  std::uint32_t addSkinJoint(std::uint32_t skin, std::uint32_t node, const double inverseBind[16]);
  void setSkinSkeleton(std::uint32_t skin, std::uint32_t node);
  // Writes the inverse bind matrices as a MAT4 accessor; later joints are
  // ignored. write() finishes skins left open.
  void finishSkin(std::uint32_t skin);

  // --- Output ------------------------------------------------------------------
  // The compact JSON text that write(destination) puts into the ".gltf" or the
  // ".glb" JSON chunk. Finishes open animations and skins.
  std::string json(const std::string& destination);
  // Writes the document: with separateFiles, stem(destination) + ".gltf" and
  // + ".bin" (the stem is the path up to its last ".", wherever that dot is) and
  // a copy of each image beside them; else one ".glb" at `destination` exactly.
  // Each file is written beside its destination under a temporary name and moved
  // into place only when every file was written completely; on any failure no
  // destination is touched, the error "Cannot write PATH: REASON" (or "Cannot
  // read PATH: REASON" for an image) is reported and false returned. May be
  // called again, e.g. with another destination.
  bool write(const std::string& destination);

  struct Impl;

 private:
  std::unique_ptr<Impl> impl_;
};

// The parts of a row-major row-vector matrix: translation = elements 12..14;
// rotation = the trace-method quaternion of the matrix as it stands, so a
// scaled matrix gives a quaternion that is not of unit length; scale = the
// lengths of the first three rows (never negative).
GltfTrs gltfDecompose(const double m[16]);
