// `vexo preview` as a user runs it: hand-made glTF files rendered in headless
// Chromium, the pictures read back and their pixels sampled. Each render
// takes seconds, so every render carries several checks.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include "validator.h"
#include "vexo_runner.h"

namespace {

struct Rgb {
  int r, g, b;
};

const Rgb kRed{255, 0, 0}, kGreen{0, 255, 0}, kBlue{0, 0, 255}, kYellow{255, 255, 0};
const Rgb kBackground{128, 128, 128};

struct Picture {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;

  Rgb at(int x, int y) const {
    const unsigned char* p = &rgb[(static_cast<std::size_t>(y) * width + x) * 3];
    return {p[0], p[1], p[2]};
  }
};

bool near(const Rgb& a, const Rgb& b, int tolerance = 3) {
  return std::abs(a.r - b.r) <= tolerance && std::abs(a.g - b.g) <= tolerance && std::abs(a.b - b.b) <= tolerance;
}

std::string describe(const Rgb& c) {
  return "(" + std::to_string(c.r) + "," + std::to_string(c.g) + "," + std::to_string(c.b) + ")";
}

::testing::AssertionResult hasColour(const Picture& picture, int x, int y, const Rgb& expected) {
  const Rgb found = picture.at(x, y);
  if (near(found, expected)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "pixel (" << x << "," << y << ") is " << describe(found) << ", expected "
                                       << describe(expected);
}

Picture readPng(const std::string& path) {
  Picture picture;
  int channels = 0;
  std::unique_ptr<unsigned char, void (*)(void*)> pixels(
      stbi_load(path.c_str(), &picture.width, &picture.height, &channels, 3), stbi_image_free);
  if (pixels) {
    picture.rgb.assign(pixels.get(), pixels.get() + static_cast<std::size_t>(picture.width) * picture.height * 3);
  }
  return picture;
}

void appendFloats(std::string& bytes, std::initializer_list<float> values) {
  for (const float value : values) bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// A unit quad in the XY plane facing +Z, with glTF's UVs: v = 0 at the top
// edge of the image. 80 bytes: positions, then UVs; 12 bytes of indices after.
// Its buffer views and accessors below leave their arrays open for more.
std::string quadBuffer() {
  std::string bytes;
  appendFloats(bytes, {-0.5f, -0.5f, 0, 0.5f, -0.5f, 0, 0.5f, 0.5f, 0, -0.5f, 0.5f, 0});
  appendFloats(bytes, {0, 1, 1, 1, 1, 0, 0, 0});
  for (const unsigned short index : {0, 1, 2, 0, 2, 3}) {
    bytes.append(reinterpret_cast<const char*>(&index), sizeof index);
  }
  return bytes;
}

const char* const kQuadViews = R"(
  "bufferViews": [{"buffer": 0, "byteOffset": 0, "byteLength": 48, "target": 34962},
                  {"buffer": 0, "byteOffset": 48, "byteLength": 32, "target": 34962},
                  {"buffer": 0, "byteOffset": 80, "byteLength": 12, "target": 34963})";
const char* const kQuadAccessors = R"(
  "accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3",
                 "min": [-0.5, -0.5, 0], "max": [0.5, 0.5, 0]},
                {"bufferView": 1, "componentType": 5126, "count": 4, "type": "VEC2"},
                {"bufferView": 2, "componentType": 5123, "count": 6, "type": "SCALAR"})";

// Writes a 64x64 texture whose quadrants are red (top left), green (top
// right), blue (bottom left) and yellow (bottom right).
void writeQuadrantTexture(const std::string& path) {
  const int side = 64;
  std::vector<unsigned char> pixels(side * side * 3);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const Rgb c = y < side / 2 ? (x < side / 2 ? kRed : kGreen) : (x < side / 2 ? kBlue : kYellow);
      unsigned char* p = &pixels[(y * side + x) * 3];
      p[0] = static_cast<unsigned char>(c.r);
      p[1] = static_cast<unsigned char>(c.g);
      p[2] = static_cast<unsigned char>(c.b);
    }
  }
  ASSERT_NE(stbi_write_png(path.c_str(), side, side, 3, pixels.data(), side * 3), 0);
}

// An unlit, textured quad as a ".gltf" with its ".bin" beside it and the
// image in a subfolder under a name that needs percent-encoding.
std::string writeTexturedQuad(const TempDir& dir) {
  dir.write("quad.bin", quadBuffer());
  std::filesystem::create_directory(dir.file("images"));
  writeQuadrantTexture(dir.file("images/four colours.png"));
  return dir.write("quad.gltf", std::string(R"({
  "asset": {"version": "2.0"},
  "extensionsUsed": ["KHR_materials_unlit"],
  "scene": 0, "scenes": [{"nodes": [0]}],
  "nodes": [{"mesh": 0}],
  "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "TEXCOORD_0": 1}, "indices": 2, "material": 0}]}],
  "materials": [{"pbrMetallicRoughness": {"baseColorTexture": {"index": 0}, "metallicFactor": 0},
                 "extensions": {"KHR_materials_unlit": {}}}],
  "textures": [{"source": 0, "sampler": 0}],
  "samplers": [{"magFilter": 9728, "minFilter": 9728}],
  "images": [{"uri": "images/four%20colours.png"}],
  "buffers": [{"uri": "quad.bin", "byteLength": 92}],)") +
                                    kQuadViews + "]," + kQuadAccessors + "]\n}\n");
}

// Two unlit quads: a green one at the origin and a red one an animation moves
// from x = -2 (also its rest place) at 0 s to x = +2 at 1 s.
std::string writeAnimatedQuads(const TempDir& dir) {
  std::string bytes = quadBuffer();
  appendFloats(bytes, {0, 1});
  appendFloats(bytes, {-2, 0, 0, 2, 0, 0});
  dir.write("moving.bin", bytes);
  return dir.write("moving.gltf", std::string(R"({
  "asset": {"version": "2.0"},
  "extensionsUsed": ["KHR_materials_unlit"],
  "scene": 0, "scenes": [{"nodes": [0, 1]}],
  "nodes": [{"mesh": 0, "name": "Still"}, {"mesh": 1, "name": "Moving", "translation": [-2, 0, 0]}],
  "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "indices": 2, "material": 0}]},
             {"primitives": [{"attributes": {"POSITION": 0}, "indices": 2, "material": 1}]}],
  "materials": [{"pbrMetallicRoughness": {"baseColorFactor": [0, 1, 0, 1]}, "extensions": {"KHR_materials_unlit": {}}},
                {"pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1]}, "extensions": {"KHR_materials_unlit": {}}}],
  "animations": [{"channels": [{"sampler": 0, "target": {"node": 1, "path": "translation"}}],
                  "samplers": [{"input": 3, "output": 4, "interpolation": "LINEAR"}]}],
  "buffers": [{"uri": "moving.bin", "byteLength": 124}],)") +
                                    std::string(kQuadViews) + R"(,
                  {"buffer": 0, "byteOffset": 92, "byteLength": 8},
                  {"buffer": 0, "byteOffset": 100, "byteLength": 24}],)" +
                                    std::string(kQuadAccessors) + R"(,
                {"bufferView": 3, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]},
                {"bufferView": 4, "componentType": 5126, "count": 2, "type": "VEC3"}]
}
)");
}

// Sets an environment variable for one scope; vexo inherits it.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value) : name_(name) { ::setenv(name, value.c_str(), 1); }
  ~ScopedEnv() { ::unsetenv(name_); }

 private:
  const char* name_;
};

TEST(Preview, TexturedQuadShowsEachQuadrantWhereTheTextureHasIt) {
  TempDir dir;
  const std::string gltf = writeTexturedQuad(dir);
  ASSERT_TRUE(isValidGltf(gltf));
  const std::string png = dir.file("quad.png");

  const VexoRun run = runVexo({"preview", gltf, png});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  EXPECT_EQ(run.out, "vexo: wrote \"" + png + "\" (" + std::to_string(readFile(png).size()) + " bytes)\n");
  const Picture picture = readPng(png);
  ASSERT_EQ(picture.width, 800);
  ASSERT_EQ(picture.height, 600);
  // The quad faces the camera, centred; its quadrants lie around the middle.
  EXPECT_TRUE(hasColour(picture, 340, 240, kRed));
  EXPECT_TRUE(hasColour(picture, 460, 240, kGreen));
  EXPECT_TRUE(hasColour(picture, 340, 360, kBlue));
  EXPECT_TRUE(hasColour(picture, 460, 360, kYellow));
  EXPECT_TRUE(hasColour(picture, 3, 3, kBackground));
  EXPECT_TRUE(hasColour(picture, 796, 596, kBackground));
  // Only the picture is left: no temporary file beside it.
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"images", "quad.bin", "quad.gltf", "quad.png"}));
}

TEST(Preview, SizeAndTimeShapeThePicture) {
  TempDir dir;
  const std::string gltf = writeAnimatedQuads(dir);
  ASSERT_TRUE(isValidGltf(gltf));
  const std::string png = dir.file("moving.png");

  const VexoRun run = runVexo({"preview", gltf, png, "--size", "320x240", "--time", "1"});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  const Picture picture = readPng(png);
  ASSERT_EQ(picture.width, 320);
  ASSERT_EQ(picture.height, 240);
  // At 1 s the red quad has moved to the right of the green one.
  int redLeft = 0, redRight = 0, greenLeft = 0;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const Rgb c = picture.at(x, y);
      const bool left = x < picture.width / 2;
      if (near(c, kRed, 40)) ++(left ? redLeft : redRight);
      if (near(c, kGreen, 40) && left) ++greenLeft;
    }
  }
  EXPECT_EQ(redLeft, 0);
  EXPECT_GT(redRight, 500);
  EXPECT_GT(greenLeft, 500);
}

TEST(Preview, FailedRenderKeepsThePreviousPicture) {
  TempDir dir;
  const std::string broken = dir.write("broken.gltf", "{\"asset\": ");
  EXPECT_FALSE(isValidGltf(broken));
  const std::string png = dir.write("old.png", "the previous picture");

  VexoRun run = runVexo({"preview", broken, png});
  EXPECT_EQ(run.exitCode, 1);
  ASSERT_FALSE(run.errLines.empty());
  EXPECT_EQ(run.errLines[0].rfind("vexo: cannot read the glTF: ", 0), 0u) << run.errText();
  EXPECT_EQ(readFile(png), "the previous picture");

  run = runVexo({"preview", dir.file("missing.glb"), dir.file("new.png")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errText(), "vexo: cannot read \"" + dir.file("missing.glb") + "\": No such file or directory\n");

  {
    ScopedEnv chromium("VEXO_PREVIEW_CHROMIUM", dir.file("no-chromium"));
    run = runVexo({"preview", broken, dir.file("new.png")});
  }
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errText(), "vexo: chromium is missing: no program \"" + dir.file("no-chromium") +
                               "\" (install it with: bash scripts/setup.sh)\n");
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"broken.gltf", "old.png"}));
}

TEST(Preview, HungRendererIsStoppedAndItsMessagesForwarded) {
  TempDir dir;
  std::filesystem::create_directory(dir.file("renderer"));
  // Ignores the stop request, so vexo has to kill it.
  dir.write("renderer/render.mjs",
            "process.on('SIGTERM', () => {});\n"
            "console.error('loading ' + process.argv[2]);\n"
            "setInterval(() => {}, 1000);\n");
  const std::string gltf = writeTexturedQuad(dir);
  ASSERT_TRUE(isValidGltf(gltf));
  VexoRun run;
  {
    ScopedEnv folder("VEXO_PREVIEW_DIR", dir.file("renderer"));
    ScopedEnv timeout("VEXO_PREVIEW_TIMEOUT", "0.5");
    run = runVexo({"preview", gltf, dir.file("hung.png")});
  }
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.errText(), "vexo: loading " + gltf + "\nvexo: rendering \"" + gltf +
                               "\" took longer than 0.5 seconds and was stopped\n");
  EXPECT_FALSE(fileExists(dir.file("hung.png")));
  EXPECT_EQ(listDir(dir.path()), (std::vector<std::string>{"images", "quad.bin", "quad.gltf", "renderer"}));
}

TEST(Preview, BadSizeOrTimeIsBadUsage) {
  TempDir dir;
  // Arguments are checked before the file is looked at.
  const std::string gltf = dir.file("any.gltf");
  for (const char* size : {"800", "800x", "x600", "0x600", "800x0", "8193x600", "800x600x2", "8OOx600"}) {
    const VexoRun run = runVexo({"preview", gltf, dir.file("out.png"), "--size", size});
    EXPECT_EQ(run.exitCode, 2) << size;
    EXPECT_EQ(run.errText(), std::string("vexo: --size \"") + size +
                                 "\": expected WIDTHxHEIGHT, each 1 to 8192 pixels, such as 800x600 "
                                 "(see vexo preview --help)\n");
  }
  for (const char* time : {"-1", "inf", "soon"}) {
    const VexoRun run = runVexo({"preview", gltf, dir.file("out.png"), "--time", time});
    EXPECT_EQ(run.exitCode, 2) << time;
    EXPECT_NE(run.errText().find("(see vexo preview --help)"), std::string::npos) << run.errText();
  }
  EXPECT_TRUE(listDir(dir.path()).empty());
}

// Which primary a lit pixel shows: the channels well above the rest.
std::string hue(const Rgb& c) {
  const int margin = 40;
  const bool r = c.r > c.b + margin, g = c.g > c.b + margin, b = c.b > c.r + margin && c.b > c.g + margin;
  if (r && g) return "yellow";
  if (r && c.r > c.g + margin) return "red";
  if (g && c.g > c.r + margin) return "green";
  if (b) return "blue";
  return "none " + describe(c);
}

// The README's example, exported with its tangent basis, is valid without a
// single error or warning, and a viewer shows each quadrant of its base
// colour where the texture has it: a flipped V or a wrong texCoord swaps them.
TEST(Preview, TexturedExampleShowsItsBaseColourWhereItBelongs) {
  TempDir dir;
  const std::string glb = dir.file("textured.glb");
  const VexoRun save = runVexo({"save", GLTFIO_EXAMPLES_DIR "/textured.json", glb, "--set",
                                "sceneio.gltf.save.tangentsBitangents=1"});
  ASSERT_EQ(save.exitCode, 0) << save.errText();
  EXPECT_EQ(save.errText().find("warning:"), std::string::npos) << save.errText();
  std::vector<GltfFinding> findings;
  std::string problem;
  ASSERT_TRUE(runGltfValidator(glb, findings, problem)) << problem;
  for (const GltfFinding& finding : findings) {
    EXPECT_GE(finding.severity, 2) << finding.code << " at " << finding.pointer << ": " << finding.message;
  }

  const std::string png = dir.file("textured.png");
  const VexoRun run = runVexo({"preview", glb, png});
  ASSERT_EQ(run.exitCode, 0) << run.errText();
  const Picture picture = readPng(png);
  ASSERT_GT(picture.width, 0);

  // The panel is what differs from the background.
  int left = picture.width, right = -1, top = picture.height, bottom = -1;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      if (near(picture.at(x, y), kBackground, 6)) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  ASSERT_GT(right - left, picture.width / 4);
  ASSERT_GT(bottom - top, picture.height / 4);
  const int w = right - left, h = bottom - top;
  const auto quadrant = [&](int column, int row) {
    return hue(picture.at(left + w * (1 + 2 * column) / 4, top + h * (1 + 2 * row) / 4));
  };
  EXPECT_EQ(quadrant(0, 0), "red");
  EXPECT_EQ(quadrant(1, 0), "green");
  EXPECT_EQ(quadrant(0, 1), "blue");
  EXPECT_EQ(quadrant(1, 1), "yellow");
}

}  // namespace
