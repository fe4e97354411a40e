#include <algorithm>
#include <cmath>

#include <rasterkit/codecs/tiff/pages/found_pages.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

constexpr uint32_t kSmallerCopy = 1, kMask = 4;

/// True if one side is that of the page, reduced as much as the other one, up to a pixel.
bool HasShapeOf(const TiffExtraPageHeader& copy, const detail::PageFacts& page) {
  const auto width = static_cast<double>(page.width), height = static_cast<double>(page.height);
  return std::abs(copy.width * height / width - copy.height) <= 1 ||
         std::abs(copy.height * width / height - copy.width) <= 1;
}

bool HasKindOf(const PixelLayout& copy, const PixelLayout& page) {
  return copy.type == page.type && copy.bits == page.bits && copy.bands == page.bands &&
         copy.model == page.model && copy.alpha == page.alpha;
}

}  // namespace

std::optional<size_t> FindTiffSmallerCopy(TStream& stream, int width, int height) {
  const LimitsScope limits;
  const uint64_t start = stream.Position();
  const detail::TagReader reader(stream);
  const detail::PageFacts page = FactsOfPage(reader, FirstDirectory(reader));
  const std::vector<detail::ExtraPage> copies = ExtraPagesOf(reader);
  stream.SetPosition(start);
  std::optional<size_t> best;
  for (size_t i = 0; i < copies.size(); i++) {
    const TiffExtraPageHeader& copy = copies[i].header;
    const bool isCopy = (copy.subfileType & kSmallerCopy) != 0 && (copy.subfileType & kMask) == 0;
    if (!isCopy || copy.width < width || copy.height < height || !HasShapeOf(copy, page) ||
        !HasKindOf(copy.layout, page.layout)) {
      continue;
    }
    if (!best || copy.width < copies[*best].header.width) best = i;
  }
  return best;
}

}  // namespace rasterkit
