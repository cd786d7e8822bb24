// The JSON text: key order and omission, number formatting, records that
// refer to one another. The empty document is checked end to end.
#include <gtest/gtest.h>

#include <limits>

#include "test_util.h"

namespace {

const std::string kHead = R"({"asset":{"generator":"Vexov11.2","version":"2.0"},"scene":0,)";

TEST(GltfJson, NumbersAreSinglePrecisionShownAsDouble) {
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t node = doc.addNode(doc.root(), "n");
  std::vector<double> m = translation(0.1, 1e300, std::numeric_limits<double>::quiet_NaN());
  doc.setNodeMatrix(node, m.data());
  const std::string json = doc.json("x.glb");
  // JSON has no NaN or infinity: they must not break the file.
  EXPECT_NE(json.find(R"("matrix":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.10000000149011612,)"),
            std::string::npos)
      << json;
  const auto parsed = parseJson(json);
  ASSERT_FALSE(parsed.HasParseError());
  EXPECT_EQ(parsed["nodes"][0]["matrix"][13].GetDouble(), static_cast<double>(std::numeric_limits<float>::max()));
  EXPECT_EQ(parsed["nodes"][0]["matrix"][14].GetDouble(), 0.0);
}

TEST(GltfJson, MaterialsKeepKeyOrderAndListUnlitOnce) {
  GltfDocument doc(settingsFor(false, nullptr));
  GltfMaterialDesc plain;
  plain.name = "plain";
  EXPECT_EQ(doc.addMaterial(plain), 1u);

  GltfMaterialDesc full;
  full.name = "full";
  full.unlit = true;
  full.baseColorFactor[3] = 0.75;
  full.alphaMode = 2;
  full.doubleSided = true;
  full.normalTexture = {0, 1};
  full.normalScale = 0.5;
  full.occlusionTexture = {1, 0};
  full.occlusionStrength = 0.25;
  full.emissiveTexture = {2, 0};
  full.baseColorTexture = {3, 0};
  full.metallicRoughnessTexture = {4, 1};
  EXPECT_EQ(doc.addMaterial(full), 2u);
  GltfMaterialDesc unlitToo = plain;
  unlitToo.unlit = true;
  ASSERT_TRUE(doc.setMaterial(1, unlitToo));
  EXPECT_FALSE(doc.setMaterial(0, plain));  // the default material stays

  const std::string json = doc.json("x.glb");
  EXPECT_EQ(json.find(kHead + R"("extensionsUsed":["KHR_materials_unlit"],"scenes":)"), 0u) << json;
  EXPECT_NE(json.find(R"("materials":[{"pbrMetallicRoughness":{"metallicFactor":0.5,"roughnessFactor":0.5}},)"
                      R"({"name":"plain","emissiveFactor":[0.0,0.0,0.0],"alphaMode":"OPAQUE","doubleSided":false,)"
                      R"("pbrMetallicRoughness":{"baseColorFactor":[1.0,1.0,1.0,1.0],"metallicFactor":1.0,)"
                      R"("roughnessFactor":1.0},"extensions":{"KHR_materials_unlit":{}}},)"
                      R"({"name":"full","emissiveFactor":[0.0,0.0,0.0],"alphaMode":"BLEND","doubleSided":true,)"
                      R"("normalTexture":{"index":0,"texCoord":1,"scale":0.5},)"
                      R"("occlusionTexture":{"index":1,"texCoord":0,"strength":0.25},)"
                      R"("emissiveTexture":{"index":2,"texCoord":0},)"
                      R"("pbrMetallicRoughness":{"baseColorFactor":[1.0,1.0,1.0,0.75],"metallicFactor":1.0,)"
                      R"("roughnessFactor":1.0,"baseColorTexture":{"index":3,"texCoord":0},)"
                      R"("metallicRoughnessTexture":{"index":4,"texCoord":1}},)"
                      R"("extensions":{"KHR_materials_unlit":{}}}])"),
            std::string::npos)
      << json;
}

TEST(GltfJson, PrimitivesOrderAttributesAndTakeMaterialsLater) {
  GltfDocument doc(settingsFor(false, nullptr));
  const std::uint32_t empty = doc.addMesh();
  const std::uint32_t mesh = doc.addMesh();
  GltfPrimitiveDesc desc;
  desc.indices = 7;
  desc.attributes = {{"TEXCOORD_10", 5}, {"WEIGHTS_0", 6}, {"TEXCOORD_2", 4}, {"NORMAL", 2}, {"POSITION", 1}};
  ASSERT_EQ(doc.addPrimitive(mesh, desc), 0u);
  ASSERT_TRUE(doc.setPrimitiveAttribute(mesh, 0, "JOINTS_0", 8));
  ASSERT_TRUE(doc.setPrimitiveMaterial(mesh, 0, 3));
  EXPECT_FALSE(doc.setPrimitiveMaterial(empty, 0, 3));
  // Nodes on both meshes: the one without primitives is not written.
  doc.setNodeMesh(doc.addNode(doc.root(), "a"), empty);
  doc.setNodeMesh(doc.addNode(doc.root(), "b"), mesh);

  const std::string json = doc.json("x.glb");
  EXPECT_NE(json.find(R"("nodes":[{"name":"a"},{"name":"b","mesh":0}],"meshes":[{"primitives":[{"indices":7,"mode":4,)"
                      R"("material":3,"attributes":{"POSITION":1,"NORMAL":2,"TEXCOORD_2":4,"TEXCOORD_10":5,)"
                      R"("JOINTS_0":8,"WEIGHTS_0":6}}]}])"),
            std::string::npos)
      << json;
}

TEST(GltfJson, TexturesAreSharedByKeyAndNeedAnImage) {
  ScratchDir dir;
  writeFile(dir / "t.png", tinyPng());
  GltfDocument doc(settingsFor(true, nullptr));
  const std::uint32_t sampler = doc.addSampler(10497, 33071);
  const std::uint32_t image = doc.addImage(dir / "t.png", 1);
  EXPECT_EQ(doc.addTexture("layer", "t", sampler, image), 0u);
  EXPECT_EQ(doc.addTexture("layer", "other", sampler, image), 0u);
  EXPECT_EQ(doc.addTexture("", "", GltfDocument::kNone, image), 1u);
  EXPECT_EQ(doc.addTexture("none", "x", sampler, GltfDocument::kNone), GltfDocument::kNone);
  const std::string json = doc.json(dir / "x.gltf");
  EXPECT_NE(json.find(R"("textures":[{"name":"t","sampler":0,"source":0},{"source":0}],)"
                      R"("images":[{"mimeType":"image/png","uri":"t.png"}],)"
                      R"("samplers":[{"wrapS":10497,"wrapT":33071}])"),
            std::string::npos)
      << json;
}

}  // namespace
