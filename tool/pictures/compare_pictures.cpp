#include "tool/pictures/compare_pictures.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <rasterkit/bands/colors/opacity_plane.h>
#include <rasterkit/codecs/picture_io.h>

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

bool AreDeepAndAlike(const Picture& a, const Picture& b) {
  constexpr int kByte = 8;
  const PixelLayout &first = a.Layout(), &second = b.Layout();
  const bool isDeep = first.type != NumberType::uint8 || first.bits > kByte;
  return isDeep && first.type == second.type && first.bits == second.bits &&
         first.bands == second.bands && first.model == second.model &&
         first.alpha == second.alpha && a.Width() == b.Width() && a.Height() == b.Height();
}

/// The range of both pictures where each has one of its own.
NumberStretch CommonStretch(const NumberStretch& a, const NumberStretch& b) {
  constexpr auto kFixed = NumberStretch::Kind::fixed;
  if (a.kind != kFixed || b.kind != kFixed) return a.kind == kFixed ? a : b;
  NumberStretch both = a;
  const bool isTurned = a.least > a.greatest || b.least > b.greatest;
  both.least = isTurned ? std::max(a.least, b.least) : std::min(a.least, b.least);
  both.greatest = isTurned ? std::min(a.greatest, b.greatest) : std::max(a.greatest, b.greatest);
  return both;
}

bool IsSamePixel(const Samples& a, const Samples& b, int x, int y) {
  const auto place = [x, y](const Samples& samples, int band) {
    const size_t pixel = static_cast<size_t>(x) * samples.PixelBytes();
    if (samples.Planes() > 1) return samples.Row(y, band) + pixel;
    return samples.Row(y) + pixel + static_cast<size_t>(band) * BytesOf(samples.Layout().type);
  };
  for (int band = 0; band < a.Layout().bands; ++band) {
    if (std::memcmp(place(a, band), place(b, band), BytesOf(a.Layout().type)) != 0) return false;
  }
  return true;
}

}  // namespace

std::optional<ComparedNumbers> CompareNumbers(const Picture& a, const Picture& b, const Run& run) {
  if (!AreDeepAndAlike(a, b)) return std::nullopt;
  Samples first = a.Numbers(run), second = b.Numbers(run);
  ComparedNumbers compared;
  for (int y = 0; y < first.Height(); ++y) {
    for (int x = 0; x < first.Width(); ++x) {
      if (IsSamePixel(first, second, x, y)) continue;
      if (compared.pixels++ > 0) continue;
      compared.x = x;
      compared.y = y;
    }
  }
  const std::string &noDataOfA = a.GetPlacement().noData, &noDataOfB = b.GetPlacement().noData;
  const NumberStretch stretch =
      CommonStretch(SettledStretch(first, noDataOfA, {}), SettledStretch(second, noDataOfB, {}));
  Changes unused;
  compared.a = std::make_unique<TBitmap>(
      VisiblePixels(Pixels(std::move(first)), noDataOfA, unused, stretch));
  compared.b = std::make_unique<TBitmap>(
      VisiblePixels(Pixels(std::move(second)), noDataOfB, unused, stretch));
  return compared;
}

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
