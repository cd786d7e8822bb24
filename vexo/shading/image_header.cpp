#include "shading/image_header.h"

#include <cstdio>

// The one place the host compiles the image library. Its own code is not held
// to this project's warning flags.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wdouble-promotion"
#define STB_IMAGE_IMPLEMENTATION
#define STBI_FAILURE_USERMSG
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace vexo {
namespace {

using FormatTest = int (*)(stbi__context*);

// The library's own format tests, in the order its header reader tries them:
// the weak TGA test comes last, so that any stronger signature wins.
const struct {
  FormatTest test;
  ImageFormat format;
} kFormatTests[] = {
    {stbi__jpeg_test, ImageFormat::Jpeg}, {stbi__png_test, ImageFormat::Png}, {stbi__gif_test, ImageFormat::Gif},
    {stbi__bmp_test, ImageFormat::Bmp},   {stbi__psd_test, ImageFormat::Psd}, {stbi__pic_test, ImageFormat::Pic},
    {stbi__pnm_test, ImageFormat::Pnm},   {stbi__hdr_test, ImageFormat::Hdr}, {stbi__tga_test, ImageFormat::Tga},
};

}  // namespace

bool readImageHeader(const std::string& path, ImageHeader& header) {
  header = ImageHeader();
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return false;
  struct Closer {
    std::FILE* file;
    ~Closer() { std::fclose(file); }
  } closer{file};

  int width = 0, height = 0, components = 0;
  if (!stbi_info_from_file(file, &width, &height, &components) || width <= 0 || height <= 0) return false;
  for (const auto& entry : kFormatTests) {
    if (std::fseek(file, 0, SEEK_SET) != 0) return false;
    stbi__context context;
    stbi__start_file(&context, file);
    if (entry.test(&context)) {
      header.format = entry.format;
      header.width = static_cast<std::uint32_t>(width);
      header.height = static_cast<std::uint32_t>(height);
      return true;
    }
  }
  return false;
}

}  // namespace vexo
