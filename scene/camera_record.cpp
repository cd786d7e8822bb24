#include "camera_record.h"

#include <cmath>

namespace {
// What a camera item reads when a channel is missing or out of range.
constexpr double kFocalLength = 0.05;   // metres
constexpr double kFilmHeight = 0.024;   // metres
constexpr double kNearClip = 0.01;      // metres
}  // namespace

std::uint32_t addCameraRecord(ExportContext& context, const CVxUser_Item& item) {
  const CVxChannelRead& read = context.edit;
  double focalLength = kFocalLength;
  double filmHeight = kFilmHeight;
  double nearClip = kNearClip;
  read.real(item, item.channelIndex("focalLen"), focalLength);
  read.real(item, item.channelIndex("apertureY"), filmHeight);
  read.real(item, item.channelIndex("clipNear"), nearClip);
  if (!(focalLength > 0.0)) focalLength = kFocalLength;
  if (!(filmHeight > 0.0)) filmHeight = kFilmHeight;
  if (!(nearClip > 0.0)) nearClip = kNearClip;

  const double yfov = 2.0 * std::atan(filmHeight / (2.0 * focalLength));
  return context.document->addCamera(item.name().c_str(), static_cast<float>(nearClip), static_cast<float>(yfov));
}
