#include "camera_record.h"

#include <cfloat>
#include <cmath>

namespace {
// What a camera item reads when a channel is missing or out of range.
constexpr double kFocalLength = 0.05;   // metres
constexpr double kFilmHeight = 0.024;   // metres
constexpr double kNearClip = 0.01;      // metres

// glTF wants both strictly positive, and the field of view below half a turn.
// These are the single-precision values closest to the open ranges' ends.
constexpr float kSmallest = FLT_MIN;
const float kWidestView = std::nextafter(static_cast<float>(M_PI), 0.0f);

// The value as written in single precision, moved into [low, high] with a
// counted warning when rounding would leave it outside.
float clamped(ExportContext& context, const CVxUser_Item& item, const char* key, double value, float low,
              float high) {
  const float written = static_cast<float>(value);
  if (written >= low && written <= high) return written;
  const float kept = written < low ? low : high;
  context.log.warning("Camera:%s %s %.9g is out of range; written as %.9g", item.name().c_str(), key, value,
                      static_cast<double>(kept));
  return kept;
}

}  // namespace

std::uint32_t addCameraRecord(ExportContext& context, const CVxUser_Item& item) {
  const CVxChannelRead& read = context.edit;
  double focalLength = kFocalLength;
  double filmHeight = kFilmHeight;
  double nearClip = kNearClip;
  read.real(item, item.channelIndex("focalLen"), focalLength);
  read.real(item, item.channelIndex("apertureY"), filmHeight);
  read.real(item, item.channelIndex("clipNear"), nearClip);
  if (!(focalLength > 0.0) || !std::isfinite(focalLength)) focalLength = kFocalLength;
  if (!(filmHeight > 0.0) || !std::isfinite(filmHeight)) filmHeight = kFilmHeight;
  if (!(nearClip > 0.0) || !std::isfinite(nearClip)) nearClip = kNearClip;

  const double yfov = 2.0 * std::atan(filmHeight / (2.0 * focalLength));
  const float znear = clamped(context, item, "znear", nearClip, kSmallest, FLT_MAX);
  const float fov = clamped(context, item, "yfov", yfov, kSmallest, kWidestView);
  return context.document->addCamera(item.name().c_str(), znear, fov);
}
