#include <algorithm>
#include <cmath>
#include <numeric>

#include <rasterkit/dialogs/values/value_histogram.h>
#include <rasterkit/raster/cut_out.h>

namespace rasterkit {
namespace {

constexpr int kRed = 297, kGreen = 589, kBlue = 114, kWhole = 1000;

int Percent(uint64_t part, uint64_t whole) {
  return static_cast<int>(std::lround(100.0 * static_cast<double>(part) /
                                      static_cast<double>(std::max<uint64_t>(whole, 1))));
}

}  // namespace

ValueHistogram CountLevels(const TBitmap& bitmap, const std::vector<TRect>& parts) {
  ValueHistogram histogram;
  if (bitmap.Empty()) return histogram;
  const TBitmap* colors = &bitmap;
  std::unique_ptr<TBitmap> converted;
  if (bitmap.PixelFormat() != pf24bit) {
    converted = bitmap.Clone();
    converted->SetTransparent(false);
    if (converted->AlphaFormat() == afDefined) converted->SetAlphaFormat(afIgnored);
    converted->SetPixelFormat(pf24bit);
    colors = converted.get();
  }
  for (const TRect& part : parts) {
    for (int y = part.Top; y < part.Bottom; ++y) {
      const uint8_t* pixel = colors->ScanLine(y) + 3 * static_cast<size_t>(part.Left);
      for (int x = part.Left; x < part.Right; ++x, pixel += 3) {
        ++histogram.blue[pixel[0]];
        ++histogram.green[pixel[1]];
        ++histogram.red[pixel[2]];
        const int gray = kBlue * pixel[0] + kGreen * pixel[1] + kRed * pixel[2];
        ++histogram.gray[static_cast<size_t>((gray + kWhole / 2) / kWhole)];
      }
    }
  }
  return histogram;
}

LevelFacts FactsOf(const LevelCounts& counts) {
  LevelFacts facts;
  uint64_t all = 0, sum = 0;
  for (size_t level = 0; level < counts.size(); ++level) {
    all += counts[level];
    sum += counts[level] * level;
  }
  if (all == 0) return facts;
  const auto isThere = [](uint64_t count) { return count != 0; };
  facts.least =
      static_cast<int>(std::find_if(counts.begin(), counts.end(), isThere) - counts.begin());
  facts.greatest = 255 - static_cast<int>(std::find_if(counts.rbegin(), counts.rend(), isThere) -
                                          counts.rbegin());
  facts.mean = static_cast<int>((sum + all / 2) / all);
  facts.blackPercent = Percent(counts.front(), all);
  facts.whitePercent = Percent(counts.back(), all);
  return facts;
}

std::array<double, 256> BarHeights(const LevelCounts& counts) {
  // The fourth highest bar of those between the ends decides: three may jut out.
  constexpr ptrdiff_t kMayJutOut = 3;
  std::array<uint64_t, 256> sorted = counts;
  sorted.front() = sorted.back() = 0;
  std::nth_element(sorted.begin(), sorted.begin() + kMayJutOut, sorted.end(), std::greater<>());
  uint64_t full = sorted[kMayJutOut];
  if (full == 0) full = *std::max_element(counts.begin(), counts.end());
  std::array<double, 256> heights{};
  if (full == 0) return heights;
  for (size_t level = 0; level < counts.size(); ++level) {
    heights[level] = std::min(1.0, static_cast<double>(counts[level]) / static_cast<double>(full));
  }
  return heights;
}

}  // namespace rasterkit
