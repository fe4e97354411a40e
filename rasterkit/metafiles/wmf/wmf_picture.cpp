#include <cmath>

#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/wmf/wmf_picture.h>

namespace rasterkit::detail {

namespace {

/// Returns a length in 0.01 mm that rounds to this number of pixels and differs by at most 1 from
/// the measured one: EMF readers compute pixels from it.
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
  // Records may move the origin of the window, so the offset is applied after the mapping.
  picture.window = {0, 0, width, height};
  picture.isMeasured = true;
  picture.origin = {std::nearbyint(-left * picture.pixels.x / width),
                    std::nearbyint(-top * picture.pixels.y / height)};
  return picture;
}

}  // namespace rasterkit::detail
