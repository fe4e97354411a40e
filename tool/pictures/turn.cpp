#include "tool/pictures/turn.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include <rasterkit/bitmaptools/rotation/orient.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>

#include "tool/arguments/color_argument.h"

namespace rasterkit::tool {
namespace {

constexpr double kNearQuarter = 0.5;

// The library refuses more threads than rows. Turned pictures of at least 3 x 3 pixels always have
// enough rows.
constexpr int kThinPicture = 2;

int ThreadCount(const TBitmap& bitmap, const PictureOptions& options) {
  if (std::min(bitmap.Width(), bitmap.Height()) <= kThinPicture) return 1;
  if (options.threads > 0) return options.threads;
  return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, 100u));
}

}  // namespace

TColor BackgroundColor(const std::string& background) {
  return background == "auto" ? -1 : ColorOf(background);
}

void TurnUpright(std::unique_ptr<TBitmap>& bitmap, int orientation) {
  Reorient(*bitmap, orientation);
}

void Turn(std::unique_ptr<TBitmap>& bitmap, const PictureOptions& options) {
  double angle = std::remainder(options.angle, 360.0);
  const double quarters = std::round(angle / 90);
  if (std::abs(angle - quarters * 90) <= kNearQuarter) {
    TurnQuarters(*bitmap, static_cast<int>(quarters));
    angle -= quarters * 90;
  }
  if (angle == 0) return;
  RotateBitmapOrThrow(static_cast<float>(angle), bitmap, BackgroundColor(options.background),
                      ThreadCount(*bitmap, options));
}

}  // namespace rasterkit::tool
