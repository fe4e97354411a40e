#include <cmath>
#include <exception>
#include <limits>
#include <string>
#include <utility>

#include <rasterkit/bitmaptools/pixels/bit_depths.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/bitmaptools/rotation/rotation_driver.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/turn/rotation_mapping.h>
#include <rasterkit/kernels/turn/turn_pixels.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/rounding.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

// Always English: the message of quarter turns is not translated.
constexpr char kQuarterTurnFailed[] = "Bitmap to large to rotate.";

bool HasTrueColorBytes(const TBitmap& bitmap) {
  return bitmap.PixelFormat() == pf24bit || bitmap.PixelFormat() == pf32bit;
}

kernels::AxisTurn QuarterTurn(int64_t degrees) {
  switch (degrees) {
    case 90:
      return kernels::kQuarterTurnCounterClockwise;
    case 180:
      return kernels::kHalfTurn;
    default:
      return kernels::kQuarterTurnClockwise;
  }
}

std::unique_ptr<TBitmap> TurnedExactly(const TBitmap& source, kernels::AxisTurn turn) {
  auto turned = std::make_unique<TBitmap>();
  const int width = turn.transpose ? source.Height() : source.Width();
  const int height = turn.transpose ? source.Width() : source.Height();
  turned->ResetPixels(pf24bit, width, height);
  turned->CarryFrom(source, {.exchangedAxes = turn.transpose,
                             .palette = false,
                             .alphaFormat = false,
                             .transparency = CarriedTransparency::none});
  if (width == 0 || height == 0) return turned;
  const kernels::ConstPixelRows from{source.ScanLine(0), source.Stride(), source.Width(),
                                     source.Height()};
  const kernels::PixelRows to{turned->ScanLine(0), turned->Stride(), width, height};
  if (source.PixelFormat() == pf32bit) {
    kernels::TurnPixels32To24(from, to, turn);
  } else {
    kernels::TurnPixels(from, to, 24, turn);
  }
  return turned;
}

// Makes a bitmap with the properties of `source`; its pixels are undefined.
std::unique_ptr<TBitmap> EmptyCopy(const TBitmap& source, int width, int height) {
  auto copy = std::make_unique<TBitmap>();
  copy->ResetPixels(source.PixelFormat(), width, height);
  copy->CarryFrom(source, {.transparency = CarriedTransparency::none});
  copy->SetTransparent(source.Transparent());
  // The color that is stored for fixed mode is not carried over in automatic mode.
  if (source.TransparentMode() == tmFixed) copy->SetTransparentColor(source.TransparentColor());
  return copy;
}

int BitmapSide(int64_t side) {
  if (side > std::numeric_limits<int>::max()) {
    throw LimitError("a bitmap cannot be " + std::to_string(side) + " pixels wide or high");
  }
  return static_cast<int>(side);
}

bool NeedsConversion(const TBitmap& bitmap, int32_t background) {
  const TPixelFormat format = bitmap.PixelFormat();
  return format == pfDevice || format == pfCustom || (format == pf1bit && background == -1);
}

// Null if the format is unsupported. Uses a converted copy if one is needed, so that an error
// leaves the caller's bitmap as it was.
std::unique_ptr<TBitmap> TurnedByAngle(float angle, TBitmap& original, int32_t background,
                                       int32_t threadsCount) {
  std::unique_ptr<TBitmap> converted;
  if (NeedsConversion(original, background)) converted = original.Clone();
  const bool wasMono = original.PixelFormat() == pf1bit && background == -1;
  if (wasMono) converted->SetPixelFormat(pf4bit);
  TBitmap& source = converted ? *converted : original;

  int32_t bytes = 0, bits = 0;
  if (!detail::GetPixelByteInfo(source, bytes, bits)) return nullptr;
  const kernels::Size size =
      kernels::RotatedSize(source.Width(), source.Height(), kernels::SineCosineOfDegrees(angle));
  std::unique_ptr<TBitmap> turned =
      EmptyCopy(source, BitmapSide(size.width), BitmapSide(size.height));
  detail::RunRotation({source, *turned, bytes, bits, wasMono, background, threadsCount, angle});
  return turned;
}

// Tells whether a normalized angle is turned exactly.
bool IsExact(float angle, const TBitmap& bitmap) {
  const int64_t rounded = Round(angle);
  return (rounded == 90 || rounded == 180 || rounded == 270) && HasTrueColorBytes(bitmap);
}

// False if the format is unsupported.
bool Rotate(float angle, std::unique_ptr<TBitmap>& bitmap, int32_t background,
            int32_t threadsCount) {
  angle = detail::NormalizeAngle(angle);
  if (angle < 0.01f || angle > 359.99f) return true;
  std::unique_ptr<TBitmap> turned = IsExact(angle, *bitmap)
                                        ? TurnedExactly(*bitmap, QuarterTurn(Round(angle)))
                                        : TurnedByAngle(angle, *bitmap, background, threadsCount);
  if (!turned) return false;
  turned->SetModified(true);
  bitmap = std::move(turned);
  return true;
}

}  // namespace

float detail::NormalizeAngle(float angle) {
  if (angle < -0.01f) {
    // Each addition but the last one is exact, because 360 is a multiple of the angle's last place
    // (below 1.3e8).
    angle = std::fmod(angle, 360.0f);
    if (angle < -0.01f) angle += 360.0f;
  }
  if (angle > 360.01f) {
    // The loop stops one turn early if a remainder of up to 0.01 is left.
    angle = std::fmod(angle, 360.0f);
    if (angle + 360.0 <= static_cast<double>(360.01f)) angle += 360.0f;
  }
  return angle;
}

bool RotateBitmap(float Angle, std::unique_ptr<TBitmap>& Bmp, int32_t BkColor, int32_t ThreadsCount,
                  TBitmap*) {
  if (!Bmp || !std::isfinite(Angle)) return false;
  try {
    return Rotate(Angle, Bmp, BkColor, ThreadsCount);
  } catch (const std::exception&) {
    const bool isExact = IsExact(detail::NormalizeAngle(Angle), *Bmp);
    ShowMessage(isExact ? kQuarterTurnFailed : ResourceString(rsBitmapToLargeToRotate));
    return false;
  }
}

void RotateBitmapOrThrow(float Angle, std::unique_ptr<TBitmap>& Bmp, int32_t BkColor,
                         int32_t ThreadsCount) {
  const bool isTurned = Bmp && std::isfinite(Angle) && Rotate(Angle, Bmp, BkColor, ThreadsCount);
  if (!isTurned) throw UnsupportedError("a picture of this kind cannot be turned");
}

}  // namespace rasterkit
