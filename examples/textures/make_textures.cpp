// Writes the example scenes' textures into the folder given as the only
// argument. Each pattern shows which way up it is, so a render that flips V or
// mixes up U and V is plain to see.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wsign-compare"
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

constexpr int kSize = 64;

struct Rgb {
  unsigned char r, g, b;
};

class Image {
 public:
  explicit Image(Rgb fill) : pixels_(kSize * kSize, fill) {}
  void set(int x, int y, Rgb c) { pixels_[static_cast<std::size_t>(y * kSize + x)] = c; }
  Rgb get(int x, int y) const { return pixels_[static_cast<std::size_t>(y * kSize + x)]; }
  // Fills the pixels whose centre lies in [u0, u1) x [v0, v1); (0, 0) is the top-left corner.
  void rect(double u0, double v0, double u1, double v1, Rgb c) {
    for (int y = 0; y < kSize; ++y)
      for (int x = 0; x < kSize; ++x) {
        const double u = (x + 0.5) / kSize, v = (y + 0.5) / kSize;
        if (u >= u0 && u < u1 && v >= v0 && v < v1) set(x, y, c);
      }
  }
  bool savePng(const std::string& path) const {
    return stbi_write_png(path.c_str(), kSize, kSize, 3, pixels_.data(), kSize * 3) != 0;
  }
  bool saveJpeg(const std::string& path) const {
    return stbi_write_jpg(path.c_str(), kSize, kSize, 3, pixels_.data(), 95) != 0;
  }

 private:
  std::vector<Rgb> pixels_;
};

// Quadrants: top-left red, top-right green, bottom-left blue, bottom-right
// yellow, with a white square near the top-left corner (clear of the
// quadrant's centre, where a render is best sampled).
Image baseColor() {
  Image image({0, 0, 0});
  image.rect(0.0, 0.0, 0.5, 0.5, {220, 40, 40});
  image.rect(0.5, 0.0, 1.0, 0.5, {40, 200, 60});
  image.rect(0.0, 0.5, 0.5, 1.0, {40, 70, 220});
  image.rect(0.5, 0.5, 1.0, 1.0, {235, 215, 40});
  image.rect(0.0625, 0.0625, 0.1875, 0.1875, {255, 255, 255});
  return image;
}

// Packed the glTF way: red occlusion (dark grooves along the quadrant edges),
// green roughness (half rough at the top, fully rough at the bottom), blue
// metallic (a metal band along the bottom edge only, so that the base colours
// still show under a plain light).
Image occlusionRoughnessMetallic() {
  Image image({0, 0, 0});
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const bool groove = std::abs(2 * x + 1 - kSize) < 4 || std::abs(2 * y + 1 - kSize) < 4;
      const auto roughness = static_cast<unsigned char>(128 + (y * 127) / (kSize - 1));
      image.set(x, y, {static_cast<unsigned char>(groove ? 60 : 255), roughness,
                       static_cast<unsigned char>(y >= kSize - kSize / 8 ? 255 : 0)});
    }
  return image;
}

// Round bumps, in tangent space (red +U, green +V up the image, blue out).
Image normals() {
  Image image({128, 128, 255});
  const double pi = std::acos(-1.0);
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const double u = (x + 0.5) / kSize, v = (y + 0.5) / kSize;
      // Height h = 0.05 sin(4 pi u) sin(4 pi v); its slopes tilt the normal.
      const double du = 0.05 * 4 * pi * std::cos(4 * pi * u) * std::sin(4 * pi * v);
      const double dv = -0.05 * 4 * pi * std::sin(4 * pi * u) * std::cos(4 * pi * v);  // V runs up in tangent space
      const double len = std::sqrt(du * du + dv * dv + 1.0);
      auto code = [](double n) { return static_cast<unsigned char>(std::lround((n * 0.5 + 0.5) * 255.0)); };
      image.set(x, y, {code(-du / len), code(-dv / len), code(1.0 / len)});
    }
  return image;
}

// A glowing orange ring in the bottom-right quadrant, black elsewhere.
Image emission() {
  Image image({0, 0, 0});
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const double u = (x + 0.5) / kSize - 0.75, v = (y + 0.5) / kSize - 0.75;
      const double r = std::sqrt(u * u + v * v);
      if (r > 0.08 && r < 0.16) image.set(x, y, {255, 140, 20});
    }
  return image;
}

// A grey checkerboard of 8 x 8 squares, for the material swatches.
Image checker() {
  Image image({0, 0, 0});
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const bool light = ((x / 8) + (y / 8)) % 2 == 0;
      const auto level = static_cast<unsigned char>(light ? 200 : 90);
      image.set(x, y, {level, level, level});
    }
  return image;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_textures FOLDER\n");
    return 2;
  }
  const std::string dir = argv[1];
  const bool ok = baseColor().savePng(dir + "/base_color.png") &&
                  occlusionRoughnessMetallic().savePng(dir + "/occlusion_roughness_metallic.png") &&
                  normals().savePng(dir + "/normal.png") && emission().saveJpeg(dir + "/emissive.jpg") &&
                  checker().saveJpeg(dir + "/checker.jpg");
  if (!ok) {
    std::fprintf(stderr, "make_textures: cannot write the textures into %s\n", dir.c_str());
    return 1;
  }
  return 0;
}
