// Materials, textures, images and samplers through `vexo save`: the shader
// tree as a user builds it, the log lines it gives, the JSON written, and the
// image bytes beside a ".gltf" or inside a ".glb".
#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <stb/stb_image_write.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "save_and_read.h"
#include "validator.h"
#include "vexo_runner.h"

namespace {

const std::string kTextures = std::string(GLTFIO_EXAMPLES_DIR) + "/textures/";
const std::string kMismatch = " Vexo preview render and external preview results possibly wont match.";

// The JSON of a written ".gltf" or ".glb", and a ".glb"'s binary chunk.
struct Written {
  rapidjson::Document json;
  std::string bin;
};

std::uint32_t u32(const std::string& bytes, std::size_t at) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data() + at, 4);
  return value;
}

void parse(const std::string& bytes, bool glb, Written& out) {
  std::string text = bytes;
  if (glb) {
    const std::uint32_t jsonLength = u32(bytes, 12);
    text = bytes.substr(20, jsonLength);
    const std::size_t binAt = 20 + jsonLength;
    out.bin = bytes.substr(binAt + 8, u32(bytes, binAt));
  }
  out.json.Parse(text.c_str());
  ASSERT_FALSE(out.json.HasParseError());
}

// One quad per material tag, in a row, with the UV maps named (each the same square).
std::string quads(const std::string& name, const std::vector<std::string>& tags,
                  const std::vector<std::string>& uvNames = {"Texture", "Decal"}) {
  std::string points, polygons, materials, uv;
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const std::string x0 = std::to_string(2 * i), x1 = std::to_string(2 * i + 1);
    const std::string p = std::to_string(4 * i);
    points += std::string(i ? "," : "") + "[" + x0 + ",0,0],[" + x1 + ",0,0],[" + x1 + ",1,0],[" + x0 + ",1,0]";
    polygons += std::string(i ? "," : "") + "[" + p + "," + std::to_string(4 * i + 1) + "," +
                std::to_string(4 * i + 2) + "," + std::to_string(4 * i + 3) + "]";
    materials += std::string(i ? "," : "") + "\"" + tags[i] + "\"";
    uv += std::string(i ? "," : "") + "[0,1],[1,1],[1,0],[0,0]";
  }
  std::string maps;
  for (std::size_t i = 0; i < uvNames.size(); ++i) {
    maps += std::string(i ? ", " : ", \"maps\": [ ") + R"({ "type": "TXUV", "name": ")" + uvNames[i] +
            R"(", "points": [)" + uv + "] }";
  }
  if (!maps.empty()) maps += " ]";
  return R"({ "name": ")" + name + R"(", "type": "mesh", "mesh": { "points": [)" + points + R"(], "polygons": [)" +
         polygons + R"(], "materials": [)" + materials + "]" + maps + " } }";
}

std::string imageMap(const std::string& name, const std::string& file, const std::string& effect, int swizzling,
                     int rgba, const std::string& locator = "UV Locator") {
  return R"({ "name": ")" + name + R"(", "type": "imageMap", "image": ")" + file + R"(", "locator": ")" + locator +
         R"(", "channels": { "effect": ")" + effect + R"(", "swizzling": )" + std::to_string(swizzling) +
         R"(, "rgba": )" + std::to_string(rgba) + " } }";
}

std::string mask(const std::string& tag, const std::vector<std::string>& layers, bool enabled = true) {
  std::string list;
  for (std::size_t i = 0; i < layers.size(); ++i) list += (i ? ", " : "") + layers[i];
  return R"({ "name": ")" + tag + R"( Mask", "type": "mask", "channels": { "ptag": ")" + tag + R"(", "enable": )" +
         (enabled ? "1" : "0") + R"( }, "layers": [)" + list + "] }";
}

std::string gltfShader(const std::string& name, const std::string& channels = "") {
  return R"({ "name": ")" + name + R"(", "type": "glTFShader", "channels": { )" + channels + " } }";
}

std::string vexoMaterial(const std::string& name, const std::string& channels) {
  return R"({ "name": ")" + name + R"(", "type": "advancedMaterial", "channels": { )" + channels + " } }";
}

std::string sceneOf(const std::vector<std::string>& meshes, const std::vector<std::string>& masks) {
  std::string items, selection, layers;
  for (std::size_t i = 0; i < meshes.size(); ++i) items += meshes[i] + ",\n";
  for (std::size_t i = 0; i < masks.size(); ++i) layers += (i ? ",\n" : "") + masks[i];
  return R"({ "items": [ )" + items +
         R"({ "name": "UV Locator", "type": "txtrLocator", "channels": { "uvMap": "Texture", "projType": 6, "tileU": 1, "tileV": 2 } },
    { "name": "Decal Locator", "type": "txtrLocator", "channels": { "uvMap": "Decal", "projType": 6, "tileU": 0, "tileV": 0, "wrapU": 3 } },
    { "name": "Planar Locator", "type": "txtrLocator", "channels": { "projType": 0 } },
    { "name": "Render", "type": "polyRender", "layers": [ )" +
         layers + R"( ] } ], "selection": []
})";
}

const rapidjson::Value* material(const Written& w, const std::string& name) {
  if (!w.json.HasMember("materials")) return nullptr;
  for (const rapidjson::Value& m : w.json["materials"].GetArray()) {
    if (m.HasMember("name") && name == m["name"].GetString()) return &m;
  }
  return nullptr;
}

struct Save {
  TempDir dir;
  SavedScene saved;
  Written written;
  bool glb = false;

  void run(const std::string& scene, const std::string& destination) {
    glb = destination.size() > 4 && destination.substr(destination.size() - 4) == ".glb";
    saved = saveAndRead(dir, scene, destination, {"--set", "sceneio.gltf.save.exportType=0"});
    parse(saved.bytes, glb, written);
  }
  int count(const std::string& line) const {
    int n = 0;
    for (const std::string& l : saved.run.errLines) n += l == line;
    return n;
  }
  int countContaining(const std::string& text) const {
    int n = 0;
    for (const std::string& l : saved.run.errLines) n += l.find(text) != std::string::npos;
    return n;
  }
};

class MaterialExport : public ::testing::TestWithParam<const char*> {};

// The materials of one scene: which layers count, the numbers they give and
// what is logged, in both output kinds.
TEST_P(MaterialExport, TagsMasksAndMaterialLayers) {
  const std::string scene = sceneOf(
      {quads("Left", {"Default", "Unknown", "Glass", "Above", "Two", "Flat", "Off", "Hidden", "Empty"}),
       quads("Right", {"Unknown", "Glass"})},
      {mask("Glass", {gltfShader("Glass Material", R"("metallic": 0.25, "roughness": 0.5, "emissive.R": 0.5, "emissivelevel": 4)"),
                      vexoMaterial("Glass Dissolve", R"("dissAmt": 0.25, "dblSided": 1)")}),
       mask("Above", {vexoMaterial("Above Dissolve", R"("dissAmt": 0.5, "dblSided": 1)"),
                      gltfShader("Above Material")}),
       mask("Two", {gltfShader("Upper", R"("metallic": 0.75)"), gltfShader("Lower", R"("metallic": 0.5)")}),
       mask("Flat", {gltfShader("Flat Material", R"("shadeModel": 1, "baseColor.G": 0.5, "metallic": 0.5)")}),
       mask("Off", {gltfShader("Off Material")}, false),
       mask("Hidden", {mask("Inner", {gltfShader("Inner Material")}, false),
                       R"({ "name": "Sleeping", "type": "glTFShader", "channels": { "enable": 0 } })"}),
       mask("Empty", {R"({ "name": "U", "type": "unityShader" })", R"({ "name": "E", "type": "unrealShader" })"})});
  Save s;
  s.run(scene, std::string("out.") + GetParam());
  const VexoRun& run = s.saved.run;

  EXPECT_TRUE(run.printed("info: Creating materials"));
  EXPECT_EQ(s.countContaining("poly mask tag:Default"), 0);
  EXPECT_EQ(s.count("info: Failed to find the poly mask tag:Unknown, using default material"), 1);
  EXPECT_EQ(s.count("info: Failed to find the poly mask tag:Off, using default material"), 1);
  EXPECT_TRUE(run.printed("info: Found mask:Glass ptag:Glass ptype:Material"));
  EXPECT_TRUE(run.printed("info:     Skipping Gltf shader layer Glass Material"));
  EXPECT_TRUE(run.printed(
      "warning:     Vexo material in glTF layer 'Above Mask' must be placed below glTF material in the shader tree!"));
  EXPECT_EQ(s.count("warning:     Multiple material layers detected within poly tag Two"), 1);
  EXPECT_TRUE(run.printed("warning: Material 'Flat' uses glTF Unlit shader extension. At the point of making this "
                          "warning Unlit extension is not fully ratified and could change at any point."));
  EXPECT_TRUE(run.printed("warning:     Poly tag Hidden does not have material layer effect"));
  EXPECT_EQ(s.countContaining("Inner Material"), 0);
  EXPECT_TRUE(run.printed("info:     Skipping Unity shader layer U"));
  EXPECT_TRUE(run.printed("info:     Skipping Unreal shader layer E"));
  EXPECT_TRUE(run.printed("warning:     Poly tag Empty does not have material layer effect"));
  EXPECT_EQ(s.countContaining("error:"), 0) << run.errText();

  const rapidjson::Value& materials = s.written.json["materials"];
  ASSERT_EQ(materials.Size(), 10u);  // the default material, then one per tag in order of first use
  const char* order[] = {"Default", "Unknown", "Glass", "Above", "Two", "Flat", "Off", "Hidden", "Empty"};
  for (int i = 0; i < 9; ++i) EXPECT_STREQ(materials[i + 1]["name"].GetString(), order[i]);

  const rapidjson::Value& glass = *material(s.written, "Glass");
  EXPECT_STREQ(glass["alphaMode"].GetString(), "BLEND");
  EXPECT_TRUE(glass["doubleSided"].GetBool());
  EXPECT_EQ(glass["pbrMetallicRoughness"]["baseColorFactor"][3].GetDouble(), 0.75);
  EXPECT_EQ(glass["pbrMetallicRoughness"]["metallicFactor"].GetDouble(), 0.25);
  EXPECT_EQ(glass["emissiveFactor"][0].GetDouble(), 2.0);  // the product as it is, above 1
  const rapidjson::Value& above = *material(s.written, "Above");
  EXPECT_STREQ(above["alphaMode"].GetString(), "OPAQUE");
  EXPECT_FALSE(above["doubleSided"].GetBool());
  EXPECT_EQ(material(s.written, "Two")->operator[]("pbrMetallicRoughness")["metallicFactor"].GetDouble(), 0.5);
  const rapidjson::Value& flat = *material(s.written, "Flat");
  EXPECT_TRUE(flat["extensions"].HasMember("KHR_materials_unlit"));
  EXPECT_EQ(flat["pbrMetallicRoughness"]["metallicFactor"].GetDouble(), 0.0);
  EXPECT_EQ(flat["pbrMetallicRoughness"]["baseColorFactor"][1].GetDouble(), 0.5);
  ASSERT_TRUE(s.written.json.HasMember("extensionsUsed"));
  EXPECT_STREQ(s.written.json["extensionsUsed"][0].GetString(), "KHR_materials_unlit");
  for (const char* plain : {"Default", "Unknown", "Off", "Hidden", "Empty"}) {
    const rapidjson::Value& m = *material(s.written, plain);
    EXPECT_EQ(m["pbrMetallicRoughness"]["metallicFactor"].GetDouble(), 1.0) << plain;
    EXPECT_STREQ(m["alphaMode"].GetString(), "OPAQUE") << plain;
    EXPECT_FALSE(m.HasMember("extensions")) << plain;
  }

  // Both meshes' primitives point at the material of their tag.
  const rapidjson::Value& meshes = s.written.json["meshes"];
  ASSERT_EQ(meshes.Size(), 2u);
  EXPECT_EQ(meshes[1]["primitives"][0]["material"].GetUint(), 2u);  // "Unknown"
  EXPECT_EQ(meshes[1]["primitives"][1]["material"].GetUint(), 3u);  // "Glass"
  for (unsigned p = 0; p < 9; ++p) EXPECT_EQ(meshes[0]["primitives"][p]["material"].GetUint(), p + 1);
  ASSERT_EQ(s.saved.gltf.meshes.size(), 2u);
  EXPECT_EQ(s.saved.gltf.meshes[1].primitives[1].material, 3);
}

// Textures, images and samplers of one scene, and the warnings about how
// image maps are set up.
TEST_P(MaterialExport, TexturesImagesAndSamplers) {
  const std::string base = kTextures + "base_color.png", packed = kTextures + "occlusion_roughness_metallic.png",
                    normal = kTextures + "normal.png", emissive = kTextures + "emissive.jpg",
                    checker = kTextures + "checker.jpg";
  const std::string scene = sceneOf(
      {quads("Body", {"Painted", "Swizzles", "Different", "Shared A", "Shared B", "Planar", "Decal", "Missing"}),
       quads("Other", {"Painted", "Decal"}, {"Texture"}), quads("Bare", {"Painted"}, {})},
      {mask("Painted", {imageMap("emissive.jpg (Image)", emissive, "emisGLTF", 0, 0),
                        imageMap("normal.png (Image)", normal, "normalGLTF", 0, 0),
                        imageMap("AO (Image)", packed, "aoGLTF", 1, 3),
                        imageMap("Rough (Image)", packed, "roughnessGLTF", 1, 4),
                        imageMap("Metal (Image)", packed, "metallicGLTF", 1, 5),
                        imageMap("base_color.png (Image)", base, "baseColorGLTF", 1, 0), gltfShader("Painted Material")}),
       mask("Swizzles", {imageMap("S Fade (Image)", base, "dissolve", 1, 0),
                         imageMap("S AO (Image)", packed, "aoGLTF", 1, 0),
                         imageMap("S Rough (Image)", packed, "roughnessGLTF", 1, 5),
                         imageMap("S Metal (Image)", packed, "metallicGLTF", 0, 5),
                         imageMap("S Base (Image)", base, "baseColorGLTF", 0, 0), gltfShader("S Material")}),
       mask("Different", {imageMap("D Fade (Image)", checker, "dissolve", 1, 2),
                          imageMap("D AO (Image)", packed, "aoGLTF", 1, 3),
                          imageMap("D Rough (Image)", checker, "roughnessGLTF", 1, 4),
                          imageMap("D Metal (Image)", packed, "metallicGLTF", 1, 5),
                          imageMap("D Base (Image)", base, "baseColorGLTF", 1, 0), gltfShader("D Material")}),
       mask("Shared A", {imageMap("checker.jpg (Image)", checker, "baseColorGLTF", 1, 0), gltfShader("A Material")}),
       mask("Shared B", {imageMap("checker.jpg (Image)", checker, "baseColorGLTF", 1, 0), gltfShader("B Material")}),
       mask("Planar", {imageMap("Planar Map (Image)", checker, "baseColorGLTF", 1, 0, "Planar Locator"),
                       gltfShader("Planar Material")}),
       mask("Decal", {imageMap("Decal Map", base, "baseColorGLTF", 1, 0, "Decal Locator"), gltfShader("Decal Material")}),
       mask("Missing", {imageMap("Gone (Image)", "/nonexistent/gone.png", "baseColorGLTF", 1, 0),
                        gltfShader("Missing Material")})});
  Save s;
  s.run(scene, std::string("out.") + GetParam());
  const VexoRun& run = s.saved.run;
  const Written& w = s.written;

  // Each swizzle and same-image warning, word for word; the textured material gives none.
  const std::vector<std::string> warnings = {
      "warning:     Swizzling is not turned on for GLTF_BaseColor image map S Base (Image)." + kMismatch,
      "warning:     Swizzling is not turned on for GLTF_Metallic image map S Metal (Image)." + kMismatch,
      "warning:     Swizzling channel must be 'Green' for GLTF_Roughness image map S Rough (Image)." + kMismatch,
      "warning:     Swizzling channel must be 'Red' for GLTF_AmbientOclussion image map S AO (Image)." + kMismatch,
      "warning:     Swizzling channel must be 'Alpha' for Dissolve image map S Fade (Image)." + kMismatch,
      "warning:     GLTF_Metallic and GLTF_Roughness image maps in one material group must use the same image. "
      "GLTF_Roughness image map :D Rough (Image)." + kMismatch,
      "warning:     GLTF_Metallic, GLTF_Roughness and GLTF_AmbientOclussion image maps in one material group should "
      "use the same image. GLTF_AmbientOclussion image map :D AO (Image). If they share the same image file "
      "resulting export file will be smaller in size.",
      "warning:     Dissolve and GLTF_BaseColor image maps in one material group must use the same image. Dissolve "
      "image map :D Fade (Image)." + kMismatch,
      "warning: Creating texture:Planar Map (Image) failed! Textures need to have texture locators and 'UVMap' "
      "projection type.",
      "warning:       Texture:Decal Map repeats 3 x 1 times; the file keeps one repeat across the UV range",
      "warning: Image file path: /nonexistent/gone.png doesn't exist!",
      "warning:       Mesh:Other holds the UV maps of material:Painted at other TEXCOORD sets than mesh:Body; it gets "
      "a copy of the material",
      "warning:       Mesh:Other has no UV map Decal for material:Decal; TEXCOORD_0 is used",
      "warning:       Mesh:Bare has no UV map for the textures of material:Painted; they are left out on it",
  };
  std::vector<std::string> printed;
  for (const std::string& line : run.errLines)
    if (line.rfind("warning:", 0) == 0 && line.find("There are ") == std::string::npos) printed.push_back(line);
  EXPECT_EQ(printed, warnings);
  EXPECT_TRUE(run.printed("info:       imageMap:Planar Map (Image) file:" + checker + " uvmap:Texture projMode:0"));
  EXPECT_TRUE(run.printed("info:       Creating texture:Decal Map texLoc:Decal Locator"));
  EXPECT_TRUE(run.printed("info:        tileU:3 tileV:1"));
  EXPECT_EQ(s.count("info:       Creating texture:checker.jpg (Image) texLoc:UV Locator"), 1);

  // The textured material: every slot, "texCoord" 1 for "Texture" after "Decal" on Body.
  const rapidjson::Value& painted = *material(w, "Painted");
  const rapidjson::Value& pbr = painted["pbrMetallicRoughness"];
  const rapidjson::Value& textures = w.json["textures"];
  const auto textureName = [&](const rapidjson::Value& ref) {
    return std::string(textures[ref["index"].GetUint()]["name"].GetString());
  };
  EXPECT_EQ(textureName(pbr["baseColorTexture"]), "base_color.png ");
  EXPECT_EQ(textureName(pbr["metallicRoughnessTexture"]), "Rough ");  // the later of the two maps
  EXPECT_EQ(textureName(painted["occlusionTexture"]), "AO ");
  EXPECT_EQ(textureName(painted["normalTexture"]), "normal.png ");
  EXPECT_EQ(textureName(painted["emissiveTexture"]), "emissive.jpg ");
  for (const rapidjson::Value* ref : {&pbr["baseColorTexture"], &pbr["metallicRoughnessTexture"],
                                      &painted["occlusionTexture"], &painted["normalTexture"],
                                      &painted["emissiveTexture"]})
    EXPECT_EQ((*ref)["texCoord"].GetUint(), 1u);

  // Other holds "Texture" as set 0: a copy; Bare has no UV set: a copy without textures.
  const rapidjson::Value& materials = w.json["materials"];
  std::vector<unsigned> paintedCopies;
  for (unsigned i = 0; i < materials.Size(); ++i)
    if (materials[i].HasMember("name") && std::string(materials[i]["name"].GetString()) == "Painted")
      paintedCopies.push_back(i);
  ASSERT_EQ(paintedCopies.size(), 3u);
  const rapidjson::Value& onOther = materials[paintedCopies[1]];
  EXPECT_EQ(onOther["pbrMetallicRoughness"]["baseColorTexture"]["texCoord"].GetUint(), 0u);
  EXPECT_EQ(onOther["normalTexture"]["texCoord"].GetUint(), 0u);
  const rapidjson::Value& onBare = materials[paintedCopies[2]];
  EXPECT_FALSE(onBare["pbrMetallicRoughness"].HasMember("baseColorTexture"));
  EXPECT_FALSE(onBare.HasMember("normalTexture"));
  const rapidjson::Value& meshes = w.json["meshes"];
  EXPECT_EQ(meshes[0]["primitives"][0]["material"].GetUint(), paintedCopies[0]);
  EXPECT_EQ(meshes[1]["primitives"][0]["material"].GetUint(), paintedCopies[1]);
  EXPECT_EQ(meshes[2]["primitives"][0]["material"].GetUint(), paintedCopies[2]);

  // One texture for the layer name both masks use, its name keeping the space.
  const rapidjson::Value& sharedA = (*material(w, "Shared A"))["pbrMetallicRoughness"]["baseColorTexture"];
  const rapidjson::Value& sharedB = (*material(w, "Shared B"))["pbrMetallicRoughness"]["baseColorTexture"];
  EXPECT_EQ(sharedA["index"].GetUint(), sharedB["index"].GetUint());
  int checkerTextures = 0;
  for (const rapidjson::Value& t : textures.GetArray()) checkerTextures += std::string(t["name"].GetString()) == "checker.jpg ";
  EXPECT_EQ(checkerTextures, 1);

  // The planar map still gives a texture; the missing file gives none, and no slot.
  EXPECT_EQ(textureName((*material(w, "Planar"))["pbrMetallicRoughness"]["baseColorTexture"]), "Planar Map ");
  EXPECT_FALSE((*material(w, "Missing"))["pbrMetallicRoughness"].HasMember("baseColorTexture"));
  EXPECT_EQ(textureName((*material(w, "Decal"))["pbrMetallicRoughness"]["baseColorTexture"]), "Decal Map");
  EXPECT_EQ((*material(w, "Decal"))["pbrMetallicRoughness"]["baseColorTexture"]["texCoord"].GetUint(), 0u);

  // Samplers: one per pair of wrap modes.
  const auto samplerOf = [&](const char* tag) {
    const rapidjson::Value& ref = (*material(w, tag))["pbrMetallicRoughness"]["baseColorTexture"];
    const rapidjson::Value& sampler = w.json["samplers"][textures[ref["index"].GetUint()]["sampler"].GetUint()];
    return std::make_pair(sampler["wrapS"].GetUint(), sampler["wrapT"].GetUint());
  };
  EXPECT_EQ(samplerOf("Painted"), std::make_pair(10497u, 33648u));
  EXPECT_EQ(samplerOf("Decal"), std::make_pair(33071u, 33071u));
  EXPECT_EQ(samplerOf("Planar"), std::make_pair(10497u, 10497u));
  EXPECT_EQ(w.json["samplers"].Size(), 3u);

  // One image per file, each holding the source's bytes beside the ".gltf" or in the ".glb".
  const std::map<std::string, std::string> mimeTypes = {
      {base, "image/png"}, {packed, "image/png"}, {normal, "image/png"}, {emissive, "image/jpeg"},
      {checker, "image/jpeg"}};
  const rapidjson::Value& images = w.json["images"];
  ASSERT_EQ(images.Size(), mimeTypes.size());
  std::map<std::string, int> seen;
  for (const rapidjson::Value& image : images.GetArray()) {
    std::string bytes;
    if (s.glb) {
      ASSERT_FALSE(image.HasMember("uri"));
      const rapidjson::Value& view = w.json["bufferViews"][image["bufferView"].GetUint()];
      const std::uint32_t offset = view.HasMember("byteOffset") ? view["byteOffset"].GetUint() : 0;
      bytes = w.bin.substr(offset, view["byteLength"].GetUint());
    } else {
      ASSERT_FALSE(image.HasMember("bufferView"));
      bytes = readFile(s.dir.file(image["uri"].GetString()));
    }
    for (const auto& [file, mime] : mimeTypes) {
      if (bytes != readFile(file)) continue;
      ++seen[file];
      EXPECT_EQ(image["mimeType"].GetString(), mime);
    }
  }
  EXPECT_EQ(seen.size(), mimeTypes.size());
  for (const auto& [file, n] : seen) EXPECT_EQ(n, 1) << file;
}

// An image of a format other than PNG and JPEG is written without "mimeType";
// its bytes go out unchanged.
TEST_P(MaterialExport, OtherImageFormatsHaveNoMimeType) {
  Save s;
  const unsigned char pixels[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
  const std::string bmp = s.dir.file("paint.bmp");
  ASSERT_NE(stbi_write_bmp(bmp.c_str(), 2, 2, 3, pixels), 0);
  s.run(sceneOf({quads("Board", {"Paint"})},
                {mask("Paint", {imageMap("paint.bmp (Image)", bmp, "baseColorGLTF", 1, 0), gltfShader("Paint Material")})}),
        std::string("board.") + GetParam());
  const rapidjson::Value& images = s.written.json["images"];
  ASSERT_EQ(images.Size(), 1u);
  EXPECT_FALSE(images[0].HasMember("mimeType"));
  if (s.glb) {
    const rapidjson::Value& view = s.written.json["bufferViews"][images[0]["bufferView"].GetUint()];
    EXPECT_EQ(s.written.bin.substr(view["byteOffset"].GetUint(), view["byteLength"].GetUint()), readFile(bmp));
  } else {
    EXPECT_STREQ(images[0]["uri"].GetString(), "paint.bmp");
  }
}

TEST(MaterialExportOff, WithMaterialsOffEveryPrimitiveKeepsTheDefault) {
  TempDir dir;
  const std::string scene =
      sceneOf({quads("Board", {"Glass", "Unknown"})}, {mask("Glass", {gltfShader("Glass Material")})});
  const SavedScene saved = saveAndRead(
      dir, scene, "off.gltf", {"--set", "sceneio.gltf.save.exportType=0", "--set", "sceneio.gltf.save.materials=0"});
  Written w;
  parse(saved.bytes, false, w);
  EXPECT_FALSE(saved.run.printed("info: Creating materials"));
  EXPECT_EQ(w.json["materials"].Size(), 1u);
  EXPECT_FALSE(w.json.HasMember("textures"));
  const rapidjson::Value& primitives = w.json["meshes"][0]["primitives"];
  ASSERT_EQ(primitives.Size(), 1u);
  EXPECT_FALSE(primitives[0].HasMember("material"));
}

INSTANTIATE_TEST_SUITE_P(Formats, MaterialExport, ::testing::Values("glb", "gltf"));

}  // namespace
