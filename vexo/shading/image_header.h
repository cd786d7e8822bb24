// What an image file's header says: its format and its size in pixels.
#pragma once

#include <cstdint>
#include <string>

namespace vexo {

// Image formats as the host tells them apart; the numbers are the SDK's format codes.
enum class ImageFormat : std::int32_t {
  Unknown = 0,
  Png = 1,
  Jpeg = 2,
  Bmp = 3,
  Tga = 4,
  Gif = 5,
  Hdr = 6,
  Psd = 7,
  Pnm = 8,
  Pic = 9,
};

struct ImageHeader {
  ImageFormat format = ImageFormat::Unknown;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

// Reads the header of the image file at `path` without decoding its pixels.
// False, with `header` left Unknown and 0 x 0, when the file is missing,
// unreadable or of a format the host does not know.
bool readImageHeader(const std::string& path, ImageHeader& header);

}  // namespace vexo
