#include <cmath>

#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/wmf/wmf_picture.h>

namespace rasterkit::detail {

namespace {

/// 0.01 mm that come to so many pixels again, at most one away from what was measured: sizes are
/// rounded twice where an enhanced metafile states them.
int FittingHundredths(int pixels, int measured) {
  constexpr double kPixelsPerHundredth = kMetafileDpi / kMm100PerInch;
  for (const int hundredths : {measured, measured - 1, measured + 1}) {
    if (std::nearbyint(hundredths * kPixelsPerHundredth) == pixels) return hundredths;
  }
  return measured;
}

}  // namespace

WmfPicture PictureOfWmf(const MetafileFacts& facts) {
  const MetafileFacts::Box& box = facts.bounds;
  const auto left = static_cast<double>(box.left), top = static_cast<double>(box.top);
  const auto width = static_cast<double>(box.Width()), height = static_cast<double>(box.Height());
  WmfPicture picture;
  picture.pixels = {static_cast<double>(facts.width), static_cast<double>(facts.height)};
  picture.widthMm100 = FittingHundredths(facts.width, facts.widthMm100);
  picture.heightMm100 = FittingHundredths(facts.height, facts.heightMm100);
  picture.device = {picture.pixels.x, picture.pixels.y, picture.widthMm100 / 100.0,
                    picture.heightMm100 / 100.0};
  if (!facts.boundsAreDrawn) {
    picture.window = {left, top, left + width, top + height};
    return picture;
  }
  // Records may move the window's origin as they like: what is drawn is moved behind the mapping.
  picture.window = {0, 0, width, height};
  picture.isMeasured = true;
  picture.origin = {std::nearbyint(-left * picture.pixels.x / width),
                    std::nearbyint(-top * picture.pixels.y / height)};
  return picture;
}

}  // namespace rasterkit::detail
