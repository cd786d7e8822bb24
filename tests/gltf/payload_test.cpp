// Binary payload: block, buffer, view and accessor in step, 4-byte alignment,
// key omission, index width, bounds, and the bytes as they land in the buffer.
#include <gtest/gtest.h>

#include "test_util.h"
#include "validator.h"

namespace {

TEST(GltfPayload, OddShortIndexBlockIsPaddedAndNextViewFollowsIt) {
  ScratchDir dir;
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t indices = doc.addIndexAccessor({0, 1, 2});
  const std::uint32_t positions =
      doc.addFloatAccessor(GltfAccessorType::Vec3, std::vector<double>{0, 0, 0, 1, 0.1, 0, 0, -2, 3}, true);
  GltfPrimitiveDesc primitive;
  primitive.indices = indices;
  primitive.attributes = {{"POSITION", positions}};
  doc.setNodeMesh(doc.addNode(doc.root(), "tri"), doc.addMesh());
  doc.addPrimitive(0, primitive);

  ASSERT_TRUE(doc.write(dir / "tri.glb"));
  EXPECT_TRUE(isValidGltf(dir / "tri.glb"));
  const std::string bin = glbBin(readFile(dir / "tri.glb"));
  ASSERT_EQ(bin.size(), 8u + 36u);
  EXPECT_EQ(bin.substr(0, 8), std::string("\0\0\1\0\2\0\0\0", 8));
  EXPECT_EQ(floatAt(bin, 8 + 4 * 4), 0.1f);
  EXPECT_EQ(floatAt(bin, 8 + 4 * 7), -2.0f);

  // Views and accessors built by hand: keys whose value is 0 or empty are left out.
  EXPECT_EQ(doc.addBufferView(0, 36, 8, 12, 34962), 2u);
  EXPECT_EQ(doc.addAccessor(2, GltfAccessorType::Vec3, GltfDocument::kFloat, 2, 4, {}, {}), 2u);
  EXPECT_EQ(doc.addAccessor(2, static_cast<GltfAccessorType>(7), GltfDocument::kFloat, 1, 0, {}, {}),
            GltfDocument::kNone);
  const std::string json = doc.json("x.glb");
  EXPECT_NE(json.find(R"("buffers":[{"byteLength":44}],"bufferViews":[{"buffer":0,"byteLength":8},)"
                      R"({"buffer":0,"byteLength":36,"byteOffset":8},)"
                      R"({"buffer":0,"byteLength":36,"byteOffset":8,"byteStride":12,"target":34962}],)"
                      R"("accessors":[{"bufferView":0,"type":"SCALAR","componentType":5123,"count":3},)"
                      R"({"bufferView":1,"type":"VEC3","componentType":5126,"count":3,)"
                      R"("min":[0.0,-2.0,0.0],"max":[1.0,0.10000000149011612,3.0]},)"
                      R"({"bufferView":2,"byteOffset":4,"type":"VEC3","componentType":5126,"count":2}])"),
            std::string::npos)
      << json;
}

TEST(GltfPayload, IndexWidthFollowsTheDocumentFlag) {
  GltfDocument wide(settingsFor(false, nullptr, true));
  ASSERT_EQ(wide.addIndexAccessor({0, 1, 70000}), 0u);
  EXPECT_EQ(wide.bufferByteLength(), 12u);
  // Unsigned short indices are never cut to fit.
  GltfDocument narrow(settingsFor(false, nullptr, false));
  EXPECT_EQ(narrow.addIndexAccessor({0, 1, 70000}), GltfDocument::kNone);
  EXPECT_EQ(narrow.addIndexAccessor({}), GltfDocument::kNone);
  EXPECT_EQ(narrow.bufferByteLength() + narrow.bufferViewCount(), 0u);
  EXPECT_EQ(narrow.addIndexAccessor({0, 1, 65535}), 0u);
}

TEST(GltfPayload, CountsWholeElementsAndRejectsPartialOnes) {
  GltfDocument doc(settingsFor(false, nullptr));
  EXPECT_EQ(doc.addFloatAccessor(GltfAccessorType::Vec3, std::vector<float>{1, 2}, false), GltfDocument::kNone);
  EXPECT_EQ(doc.addUShortAccessor(GltfAccessorType::Vec4, {1, 2, 3}), GltfDocument::kNone);
  EXPECT_EQ(doc.accessorCount() + doc.bufferByteLength(), 0u);

  EXPECT_EQ(doc.addUShortAccessor(GltfAccessorType::Vec4, {1, 2, 3, 4, 5, 6, 7, 8}), 0u);
  EXPECT_EQ(doc.addFloatAccessor(GltfAccessorType::Mat4, std::vector<float>(32, 0.5f), false), 1u);
  EXPECT_NE(doc.json("x.glb").find(R"("buffers":[{"byteLength":144}],"bufferViews":[{"buffer":0,"byteLength":16},)"
                                   R"({"buffer":0,"byteLength":128,"byteOffset":16}],)"
                                   R"("accessors":[{"bufferView":0,"type":"VEC4","componentType":5123,"count":2},)"
                                   R"({"bufferView":1,"type":"MAT4","componentType":5126,"count":2}])"),
            std::string::npos);
}

}  // namespace
