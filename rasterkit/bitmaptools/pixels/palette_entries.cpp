#include <algorithm>
#include <cstdlib>
#include <span>

#include <rasterkit/bitmaptools/pixels/palette_entries.h>

namespace rasterkit::detail {
namespace {

std::span<const tagPALETTEENTRY> ValidEntries(int32_t count, const TColorTable& entries) {
  return std::span(entries).first(static_cast<size_t>(std::clamp(count, 0, 256)));
}

template <class Test>
int32_t FirstEntry(int32_t count, const TColorTable& entries, Test test) {
  const auto valid = ValidEntries(count, entries);
  const auto found = std::find_if(valid.begin(), valid.end(), test);
  return found == valid.end() ? -1 : static_cast<int32_t>(found - valid.begin());
}

}  // namespace

HPALETTE CreatePaletteWithColor(const TColorTable& entries, int32_t count, uint8_t red,
                                uint8_t green, uint8_t blue) {
  TColorTable longer = entries;
  const auto last = static_cast<size_t>(std::clamp(count, 0, 255));
  longer[last] = {red, green, blue, 0};
  return HPALETTE(std::span(longer).first(last + 1));
}

int32_t FindBlackEntry(int32_t count, const TColorTable& entries) {
  return FirstEntry(count, entries, [](const tagPALETTEENTRY& entry) {
    return entry.peRed == 0 && entry.peGreen == 0 && entry.peBlue == 0;
  });
}

int32_t FindWhiteEntry(int32_t count, const TColorTable& entries) {
  return FirstEntry(count, entries, [](const tagPALETTEENTRY& entry) {
    return entry.peRed == 255 && entry.peGreen == 255 && entry.peBlue > 254;
  });
}

int32_t NearestPaletteEntry(int32_t count, const TColorTable& entries, uint8_t red,
                            uint8_t /*green*/, uint8_t blue) {
  int32_t nearest = -1;
  int least = 255;
  const auto valid = ValidEntries(count, entries);
  for (size_t i = 0; i < valid.size(); ++i) {
    const int distance = std::max({std::abs(red - valid[i].peRed), std::abs(red - valid[i].peGreen),
                                   std::abs(blue - valid[i].peBlue)});
    if (distance >= least) continue;
    least = distance;
    nearest = static_cast<int32_t>(i);
  }
  return nearest;
}

}  // namespace rasterkit::detail
