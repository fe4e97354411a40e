#include "tool/pictures/compare_pictures.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <rasterkit/bands/colors/opacity_plane.h>

namespace rasterkit::tool {
namespace {

/// Converts to 32-bit rows whose fourth byte is the opacity of the pixel.
void MakeComparable(TBitmap& bitmap) {
  detail::KeyToAlpha(bitmap);
  if (detail::HasAlpha(bitmap)) return;
  // Converting from 24-bit sets the fourth byte to 255.
  if (bitmap.PixelFormat() == pf32bit) bitmap.SetPixelFormat(pf24bit);
  bitmap.SetPixelFormat(pf32bit);
}

int Distance(const RGBArec& a, const RGBArec& b) {
  if (a.a == 0 && b.a == 0) return 0;
  return std::max(std::max(std::abs(a.r - b.r), std::abs(a.g - b.g)),
                  std::max(std::abs(a.b - b.b), std::abs(a.a - b.a)));
}

}  // namespace

std::optional<PictureDifference> ComparePictures(TBitmap& a, TBitmap& b, int tolerance) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) return std::nullopt;
  MakeComparable(a);
  MakeComparable(b);
  PictureDifference difference;
  for (int y = 0; y < a.Height(); ++y) {
    const auto* const rowA = reinterpret_cast<const RGBArec*>(a.ScanLine(y));
    const auto* const rowB = reinterpret_cast<const RGBArec*>(b.ScanLine(y));
    if (std::memcmp(rowA, rowB, a.Content().RowBytes()) == 0) continue;
    for (int x = 0; x < a.Width(); ++x) {
      const int distance = Distance(rowA[x], rowB[x]);
      difference.greatest = std::max(difference.greatest, distance);
      if (distance <= tolerance) continue;
      if (difference.pixels++ > 0) continue;
      difference.x = x;
      difference.y = y;
    }
  }
  return difference;
}

}  // namespace rasterkit::tool
