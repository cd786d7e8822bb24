#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <stb/stb_image_write.h>

#include "scene_fixture.h"
#include "vexo/vx_shade.h"

namespace vexo {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> childNames(const Item& item) {
  std::vector<std::string> names;
  for (const Item* child : item.children()) names.push_back(child->name());
  return names;
}

std::string text(SceneFixture& f, const std::string& ref, const char* name) {
  const char* value = nullptr;
  EXPECT_EQ(f.reader()->Text(f.item(ref), f.channel(ref, name), &value), VXR_OK) << ref << "." << name;
  return value ? value : "";
}

TEST(ShaderTree, LayersListedTopFirstBecomeChildrenFromTheBottom) {
  SceneFixture f(R"json({
    "items": [
      { "name": "Render", "type": "polyRender", "layers": [
        { "name": "Wood", "type": "mask", "channels": { "ptag": "Wood" }, "layers": [
          { "name": "Tint", "type": "advancedMaterial", "channels": { "dissAmt": 0.25, "dblSided": 1 } },
          { "name": "wood.png (Image)", "type": "imageMap", "image": "wood.png", "locator": "WoodLoc",
            "channels": { "effect": "baseColorGLTF", "swizzling": 1, "rgba": 0 } },
          { "name": "glTF", "type": "glTFShader", "channels": { "metallic": 0.2 },
            "actions": { "edit": { "metallic": 0.5, "shadeModel": 1 } } }
        ] },
        { "name": "Base", "type": "advancedMaterial" }
      ] },
      { "name": "WoodLoc", "type": "txtrLocator", "channels": { "projType": 0, "tileU": 2 } }
    ]
  })json");
  ASSERT_TRUE(f.ok());
  const Item* render = f.scene.findIdent("Render");
  EXPECT_EQ(childNames(*render), (std::vector<std::string>{"Base", "Wood"}));
  EXPECT_EQ(childNames(*f.scene.findIdent("Wood")), (std::vector<std::string>{"glTF", "wood.png (Image)", "Tint"}));
  // Through the SDK too, index 0 is the bottom of the stack.
  EXPECT_STREQ(f.item("Wood")->ChildByIndex(0)->Name(), "glTF");
  EXPECT_STREQ(f.item("Wood")->ChildByIndex(2)->Name(), "Tint");
  // Scene order stays the order of the file; clips made for "image" come last.
  std::vector<std::string> order;
  for (std::size_t i = 0; i < f.scene.itemCount(); ++i)
    if (!f.scene.item(i).stackOwner()) order.push_back(f.scene.item(i).name());
  EXPECT_EQ(order, (std::vector<std::string>{"Scene", "Render", "Wood", "Tint", "wood.png (Image)", "glTF", "Base",
                                             "WoodLoc", "wood.png"}));

  EXPECT_EQ(text(f, "Wood", "ptag"), "Wood");
  EXPECT_EQ(text(f, "Wood", "ptyp"), "Material");
  EXPECT_EQ(f.number("glTF", "metallic", "setup"), 0.2);
  EXPECT_EQ(f.number("glTF", "metallic"), 0.5);
  EXPECT_EQ(f.number("glTF", "shadeModel", "setup"), 0.0);
  EXPECT_EQ(f.number("glTF", "shadeModel"), 1.0);
  // Untouched channels hold glTF's defaults, so an untouched layer is glTF's default material.
  for (const char* one : {"baseColor.R", "baseColor.G", "baseColor.B", "roughness", "emissivelevel", "normalscale",
                          "aoscale"})
    EXPECT_EQ(f.number("glTF", one), 1.0) << one;
  for (const char* zero : {"emissive.R", "emissive.G", "emissive.B"}) EXPECT_EQ(f.number("glTF", zero), 0.0) << zero;
  EXPECT_EQ(f.number("Tint", "dissAmt"), 0.25);
  EXPECT_EQ(f.number("Tint", "dblSided"), 1.0);
  EXPECT_EQ(f.number("Base", "dissAmt"), 0.0);
  EXPECT_EQ(f.number("wood.png (Image)", "enable"), 1.0);
  EXPECT_EQ(text(f, "wood.png (Image)", "effect"), "baseColorGLTF");
  EXPECT_EQ(f.number("WoodLoc", "projType"), 0.0);
  EXPECT_EQ(f.number("WoodLoc", "tileU"), 2.0);
  EXPECT_EQ(f.number("WoodLoc", "tileV"), 1.0);
  EXPECT_EQ(f.number("WoodLoc", "wrapV"), 1.0);
  EXPECT_EQ(text(f, "WoodLoc", "uvMap"), "Texture");

  IVxShaderService* shading = f.sdk.ShaderService();
  ASSERT_NE(shading, nullptr);
  IVxItem* clip = nullptr;
  IVxItem* locator = nullptr;
  ASSERT_EQ(shading->LayerClip(f.item("wood.png (Image)"), &clip), VXR_OK);
  EXPECT_EQ(clip, f.item("wood.png"));
  ASSERT_EQ(shading->LayerTextureLocator(f.item("wood.png (Image)"), &locator), VXR_OK);
  EXPECT_EQ(locator, f.item("WoodLoc"));
  EXPECT_EQ(shading->LayerClip(f.item("glTF"), &clip), VXR_NOTFOUND);
  EXPECT_EQ(clip, nullptr);
  EXPECT_EQ(shading->LayerTextureLocator(f.item("Tint"), &locator), VXR_NOTFOUND);
  EXPECT_EQ(shading->LayerClip(f.item("Tint"), nullptr), VXR_BADARG);
}

TEST(ShaderTree, RefusalsNameFileLineAndColumn) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"{\"items\": [{\"name\": \"G\", \"type\": \"glTFShader\",\n  \"channels\": {\"metalic\": 1}}]}",
       "scene.json:2:16: unknown channel \"metalic\" for item type \"glTFShader\""},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\",\n  \"clip\": \"nothing\"}]}",
       "scene.json:2:11: cannot find the image clip: no item \"nothing\""},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\", \"clip\": \"Box\"},\n {\"name\": \"Box\", \"type\": \"mesh\"}]}",
       "scene.json:1:54: the clip \"Box\" is a \"mesh\"; an image map shows an \"imageClip\""},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\",\n  \"locator\": \"Box\"}, {\"name\": \"Box\", \"type\": \"mesh\"}]}",
       "scene.json:2:14: the locator \"Box\" is a \"mesh\"; an image map is projected by a \"txtrLocator\""},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\", \"locator\": \"L\"}]}",
       "scene.json:1:57: cannot find the texture locator: no item \"L\""},
      {"{\"items\": [{\"name\": \"M\", \"type\": \"imageMap\", \"clip\": \"C\", \"image\": \"a.png\"},\n"
       " {\"name\": \"C\", \"type\": \"imageClip\"}]}",
       "scene.json:1:68: \"image\" cannot be given beside \"clip\": an image map shows one image clip"},
      {"{\"items\": [{\"name\": \"R\", \"type\": \"polyRender\", \"layers\": [\n  {\"name\": \"B\", \"type\": \"mesh\"}]}]}",
       "scene.json:2:25: \"mesh\" is no shader-tree layer: \"layers\" holds items whose type derives from "
       "\"textureLayer\""},
      {"{\"items\": [{\"name\": \"K\", \"type\": \"mask\", \"children\": []}]}",
       "scene.json:1:42: a shader-tree layer holds its layers under \"layers\", top first, not \"children\""},
      {"{\"items\": [{\"name\": \"C\", \"type\": \"imageClip\", \"file\": \"\"}]}",
       "scene.json:1:55: the image file name is empty"},
      {"{\"items\": [{\"name\": \"A\", \"type\": \"mesh\", \"clip\": \"C\"}]}",
       "scene.json:1:42: unknown key \"clip\" in an item; expected one of \"name\", \"type\", \"id\", \"channels\", "
       "\"actions\", \"keys\", \"children\", \"mesh\", \"source\", \"position\", \"rotation\", \"rotationOrder\", \"scale\", "
       "\"rotationPivot\", \"scalePivot\", \"rotationOffset\", \"scaleOffset\", \"preRotation\", \"postRotation\", "
       "\"transforms\""},
  };
  for (const auto& c : cases) EXPECT_EQ(readError(c.text), c.message) << c.text;
}

// A folder of its own under the system's temporary folder, removed afterwards.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "vexo-shading-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data()) ? pattern : std::string();
    EXPECT_FALSE(path_.empty());
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  fs::path path() const { return path_; }

 private:
  fs::path path_;
};

std::vector<unsigned char> pixels(int width, int height, int components) {
  std::vector<unsigned char> data(static_cast<std::size_t>(width * height * components));
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<unsigned char>(i * 37);
  return data;
}

TEST(ImageClips, FilesResolveBesideTheSceneAndTellTheirFormatAndSize) {
  TempFolder temp;
  const fs::path dir = temp.path();
  fs::create_directories(dir / "textures");
  ASSERT_TRUE(stbi_write_png((dir / "textures/color.png").c_str(), 7, 3, 4, pixels(7, 3, 4).data(), 7 * 4));
  ASSERT_TRUE(stbi_write_jpg((dir / "textures/rough.jpg").c_str(), 5, 9, 3, pixels(5, 9, 3).data(), 90));
  // A file that is no image, and a PNG under a misleading name: the header decides.
  std::ofstream(dir / "textures/notes.png") << "not an image\n";
  fs::copy_file(dir / "textures/color.png", dir / "textures/color.jpg");
  const std::string scenePath = (dir / "scene.json").string();
  std::ofstream(scenePath) << R"({ "items": [
    { "name": "Color", "type": "imageClip", "file": "textures/color.png" },
    { "name": "Render", "type": "polyRender", "layers": [
      { "name": "A", "type": "imageMap", "clip": "Color" },
      { "name": "H", "type": "imageMap", "clip": "rough.jpg" },
      { "name": "B", "type": "imageMap", "image": "./textures/../textures/color.png" },
      { "name": "C", "type": "imageMap", "image": "textures/rough.jpg" },
      { "name": "D", "type": "imageMap", "image": "textures/rough.jpg" },
      { "name": "E", "type": "imageMap", "image": "textures/gone.png" },
      { "name": "F", "type": "imageMap", "image": "textures/notes.png" },
      { "name": "G", "type": "imageMap", "image": "textures/color.jpg" }
    ] },
    { "name": "Bare", "type": "imageClip" }
  ] })";

  Scene scene;
  std::string error;
  ASSERT_TRUE(readSceneFile(scenePath, scene, error)) << error;
  SdkScene sdk(scene);
  IVxShaderService* shading = sdk.ShaderService();
  auto clipOf = [&](const char* layer) {
    IVxItem* clip = nullptr;
    EXPECT_EQ(shading->LayerClip(sdk.wrap(scene.findName(layer)), &clip), VXR_OK) << layer;
    return clip;
  };
  auto fileOf = [&](IVxItem* clip) {
    const char* path = nullptr;
    EXPECT_EQ(shading->ClipFileName(clip, &path), VXR_OK);
    return std::string(path ? path : "");
  };
  auto infoOf = [&](IVxItem* clip, VxResult expected) {
    VxImageInfo info{-1, 99, 99};
    EXPECT_EQ(shading->ClipImageInfo(clip, &info), expected);
    return info;
  };

  // One clip per file, however the path is written; made clips are named after the file.
  EXPECT_EQ(clipOf("A"), clipOf("B"));
  EXPECT_EQ(clipOf("C"), clipOf("D"));
  EXPECT_EQ(clipOf("H"), clipOf("C"));  // a made clip can be named, wherever the file names it
  EXPECT_STREQ(clipOf("C")->Name(), "rough.jpg");
  const fs::path real = dir.lexically_normal();
  EXPECT_EQ(fileOf(clipOf("A")), (real / "textures/color.png").string());
  EXPECT_EQ(fileOf(clipOf("C")), (real / "textures/rough.jpg").string());

  VxImageInfo png = infoOf(clipOf("A"), VXR_OK);
  EXPECT_EQ(png.format, VX_IMAGE_PNG);
  EXPECT_EQ(png.width, 7u);
  EXPECT_EQ(png.height, 3u);
  VxImageInfo jpeg = infoOf(clipOf("C"), VXR_OK);
  EXPECT_EQ(jpeg.format, VX_IMAGE_JPEG);
  EXPECT_EQ(jpeg.width, 5u);
  EXPECT_EQ(jpeg.height, 9u);
  EXPECT_EQ(infoOf(clipOf("G"), VXR_OK).format, VX_IMAGE_PNG);

  // A missing file is no load error: the clip keeps its path, only its header is unknown.
  EXPECT_EQ(fileOf(clipOf("E")), (real / "textures/gone.png").string());
  VxImageInfo missing = infoOf(clipOf("E"), VXR_NOTFOUND);
  EXPECT_EQ(missing.format, VX_IMAGE_UNKNOWN);
  EXPECT_EQ(missing.width, 0u);
  EXPECT_EQ(missing.height, 0u);
  EXPECT_EQ(infoOf(clipOf("F"), VXR_NOTFOUND).format, VX_IMAGE_UNKNOWN);

  // A clip without a file has no path.
  const char* path = "unchanged";
  EXPECT_EQ(shading->ClipFileName(sdk.wrap(scene.findName("Bare")), &path), VXR_NOTFOUND);
  EXPECT_EQ(path, nullptr);
  EXPECT_EQ(infoOf(sdk.wrap(scene.findName("Bare")), VXR_NOTFOUND).format, VX_IMAGE_UNKNOWN);
}


// Child index of a layer under its parent.
std::size_t childIndex(const Item& layer) {
  const auto& siblings = layer.parent()->children();
  return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), &layer) - siblings.begin());
}

TEST(ShaderTreeExamples, EveryImageMapShowsAnExistingTextureAndLayersStackAsCommented) {
  for (const char* name : {"textured.json", "materials.json"}) {
    Scene scene;
    std::string error;
    ASSERT_TRUE(readSceneFile(std::string(EXAMPLES_DIR) + "/" + name, scene, error)) << error;
    SdkScene sdk(scene);
    IVxShaderService* shading = sdk.ShaderService();
    std::size_t maps = 0;
    for (Item* map : scene.itemsOfType(scene.types().find("imageMap"))) {
      ++maps;
      IVxItem* clip = nullptr;
      IVxItem* locator = nullptr;
      ASSERT_EQ(shading->LayerClip(sdk.wrap(map), &clip), VXR_OK) << name << ": " << map->name();
      EXPECT_EQ(shading->LayerTextureLocator(sdk.wrap(map), &locator), VXR_OK) << name << ": " << map->name();
      VxImageInfo info{};
      ASSERT_EQ(shading->ClipImageInfo(clip, &info), VXR_OK) << name << ": " << clip->Name();
      const std::string file = clip->Name();
      EXPECT_EQ(info.format, file.substr(file.size() - 4) == ".png" ? VX_IMAGE_PNG : VX_IMAGE_JPEG) << file;
      EXPECT_EQ(info.width, 64u);
      EXPECT_EQ(info.height, 64u);
    }
    EXPECT_GE(maps, 5u) << name;
  }

  Scene scene;
  std::string error;
  ASSERT_TRUE(readSceneFile(EXAMPLES_DIR "/materials.json", scene, error)) << error;
  // The warnings the file is made for depend on which layer lies above which.
  EXPECT_GT(childIndex(*scene.findName("Vexo Above Dissolve")), childIndex(*scene.findName("Vexo Above Material")));
  EXPECT_LT(childIndex(*scene.findName("Glass Dissolve")), childIndex(*scene.findName("Glass Material")));
}

}  // namespace
}  // namespace vexo
