// Binary payload: block, buffer, view and accessor in step, 4-byte alignment,
// index width, bounds, and the bytes as they land in the buffer.
#include <gtest/gtest.h>

#include <cstring>

#include "test_util.h"
#include "validator.h"

namespace {

float floatAt(const std::string& bytes, std::size_t offset) {
  const std::uint32_t bits = le32(bytes, offset);
  float value;
  std::memcpy(&value, &bits, 4);
  return value;
}

TEST(GltfPayload, OddShortIndexBlockIsPaddedAndNextViewFollowsIt) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t indices = doc.addIndexAccessor({0, 1, 2});
  const std::uint32_t positions =
      doc.addFloatAccessor(GltfAccessorType::Vec3, std::vector<double>{0, 0, 0, 1, 0.1, 0, 0, -2, 3}, true);
  EXPECT_EQ(indices, 0u);
  EXPECT_EQ(positions, 1u);
  EXPECT_EQ(doc.bufferByteLength(), 8u + 36u);

  GltfPrimitiveDesc primitive;
  primitive.indices = indices;
  primitive.attributes = {{"POSITION", positions}};
  doc.setNodeMesh(doc.addNode(doc.root(), "tri"), doc.addMesh());
  doc.addPrimitive(0, primitive);

  const auto json = parseJson(doc.json("x.glb"));
  const auto& views = json["bufferViews"];
  EXPECT_EQ(views[0]["byteLength"].GetUint(), 8u);
  EXPECT_FALSE(views[0].HasMember("byteOffset"));
  EXPECT_EQ(views[1]["byteOffset"].GetUint(), 8u);
  EXPECT_EQ(views[1]["byteLength"].GetUint(), 36u);
  const auto& accessors = json["accessors"];
  EXPECT_EQ(accessors[0]["componentType"].GetUint(), GltfDocument::kUnsignedShort);
  EXPECT_EQ(accessors[0]["count"].GetUint(), 3u);
  EXPECT_FALSE(accessors[0].HasMember("min"));
  EXPECT_EQ(accessors[1]["count"].GetUint(), 3u);
  EXPECT_EQ(accessors[1]["min"][1].GetDouble(), -2.0);
  EXPECT_EQ(accessors[1]["max"][1].GetDouble(), static_cast<double>(0.1f));
  EXPECT_EQ(accessors[1]["max"][2].GetDouble(), 3.0);
  for (const auto& accessor : accessors.GetArray()) EXPECT_FALSE(accessor.HasMember("byteOffset"));

  ASSERT_TRUE(doc.write(dir / "tri.glb"));
  const std::string glb = readFile(dir / "tri.glb");
  const std::size_t bin = 20 + le32(glb, 12) + 8;
  EXPECT_EQ(le32(glb, bin - 8), 44u);
  EXPECT_EQ(glb.substr(bin, 8), std::string("\0\0\1\0\2\0\0\0", 8));
  EXPECT_EQ(floatAt(glb, bin + 8 + 4 * 4), 0.1f);
  EXPECT_EQ(floatAt(glb, bin + 8 + 4 * 7), -2.0f);
  EXPECT_TRUE(isValidGltf(dir / "tri.glb"));
}

TEST(GltfPayload, IndexWidthFollowsTheDocumentFlag) {
  GltfDocument wide(settingsFor(false, nullptr, true));
  ASSERT_EQ(wide.addIndexAccessor({0, 1, 70000}), 0u);
  EXPECT_EQ(wide.bufferByteLength(), 12u);
  EXPECT_NE(wide.json("x.glb").find(R"("componentType":5125,"count":3)"), std::string::npos);

  GltfDocument narrow(settingsFor(false, nullptr, false));
  EXPECT_EQ(narrow.addIndexAccessor({0, 1, 70000}), GltfDocument::kNone);
  EXPECT_EQ(narrow.addIndexAccessor({}), GltfDocument::kNone);
  EXPECT_EQ(narrow.bufferByteLength(), 0u);
  EXPECT_EQ(narrow.bufferViewCount(), 0u);
  EXPECT_EQ(narrow.addIndexAccessor({0, 1, 65535}), 0u);
}

TEST(GltfPayload, RejectsPayloadsThatAreNotWholeElements) {
  GltfDocument doc(settingsFor(false, nullptr));
  EXPECT_EQ(doc.addFloatAccessor(GltfAccessorType::Vec3, std::vector<float>{1, 2}, false), GltfDocument::kNone);
  EXPECT_EQ(doc.addUShortAccessor(GltfAccessorType::Vec4, {1, 2, 3}), GltfDocument::kNone);
  EXPECT_EQ(doc.accessorCount(), 0u);
  EXPECT_EQ(doc.bufferByteLength(), 0u);

  // Joints: two VEC4 elements of shorts, 16 bytes, no padding needed.
  EXPECT_EQ(doc.addUShortAccessor(GltfAccessorType::Vec4, {1, 2, 3, 4, 5, 6, 7, 8}), 0u);
  EXPECT_EQ(doc.addFloatAccessor(GltfAccessorType::Mat4, std::vector<float>(32, 0.5f), false), 1u);
  EXPECT_EQ(doc.bufferByteLength(), 16u + 128u);
  const auto json = parseJson(doc.json("x.glb"));
  EXPECT_EQ(json["accessors"][0]["count"].GetUint(), 2u);
  EXPECT_STREQ(json["accessors"][1]["type"].GetString(), "MAT4");
  EXPECT_EQ(json["accessors"][1]["count"].GetUint(), 2u);
  EXPECT_EQ(json["bufferViews"][1]["byteOffset"].GetUint(), 16u);
}

TEST(GltfPayload, LowLevelStepsReturnLengthsAndOffsets) {
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint16_t shorts[5] = {1, 2, 3, 4, 5};
  const std::uint32_t first = doc.addBlock(GltfBlockKind::UInt16, shorts, 5);
  EXPECT_EQ(first, 12u);
  EXPECT_EQ(doc.growBuffer(first), 0u);
  EXPECT_EQ(doc.growBuffer(8), 12u);
  EXPECT_EQ(doc.bufferByteLength(), 20u);
  EXPECT_EQ(doc.addBlock(GltfBlockKind::Image, shorts, 5), 0u);
}

}  // namespace
