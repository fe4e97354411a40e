#include <algorithm>
#include <cmath>

#include <rasterkit/pictures/sources/smaller_forms.h>

namespace rasterkit::detail {
namespace {

constexpr uint32_t kReducedCopy = 1;

/// True if both numbers of pixels come from one factor, rounded up or down.
bool HasProportionsOf(const PictureHeader& header, const TiffExtraPageHeader& page) {
  const double across = static_cast<double>(page.width) / header.width;
  const double down = static_cast<double>(page.height) / header.height;
  return std::abs(page.width - down * header.width) < 1 + down / 2 &&
         std::abs(page.height - across * header.height) < 1 + across / 2;
}

bool IsSameProfile(const ColorProfile& a, const ColorProfile& b) {
  if (a == nullptr || b == nullptr) return a == b;
  return *a == *b;
}

bool HasPixelsOf(const PixelLayout& a, const PixelLayout& b) {
  return a.type == b.type && a.bits == b.bits && a.bands == b.bands && a.model == b.model &&
         a.alpha == b.alpha && a.extraBands == b.extraBands && a.palette == b.palette &&
         IsSameProfile(a.profile, b.profile);
}

}  // namespace

std::optional<SmallerForm> SmallestJpeg(const PictureHeader& header, int width, int height) {
  for (const int denominator : {8, 4, 2}) {
    const auto shrunk = [=](int side) { return (side - 1) / denominator + 1; };
    if (shrunk(header.width) < width || shrunk(header.height) < height) continue;
    return SmallerForm{shrunk(header.width), shrunk(header.height), denominator, std::nullopt};
  }
  return std::nullopt;
}

std::optional<SmallerForm> SmallestCopy(const PictureHeader& header,
                                        const std::vector<TiffExtraPageHeader>& pages, int width,
                                        int height) {
  std::optional<SmallerForm> best;
  for (size_t i = 0; i < pages.size(); i++) {
    const TiffExtraPageHeader& page = pages[i];
    const bool isUsable = page.subfileType == kReducedCopy && page.width >= width &&
                          page.height >= height && page.width < header.width &&
                          HasPixelsOf(page.layout, header.layout) && HasProportionsOf(header, page);
    if (!isUsable || (best && best->width <= page.width)) continue;
    best = SmallerForm{page.width, page.height, 1, i};
  }
  return best;
}

}  // namespace rasterkit::detail
