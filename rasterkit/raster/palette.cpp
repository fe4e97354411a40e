#include <algorithm>

#include <rasterkit/raster/palette.h>

namespace rasterkit {
namespace {

constexpr tagPALETTEENTRY Entry(int red, int green, int blue) {
  return {static_cast<uint8_t>(red), static_cast<uint8_t>(green), static_cast<uint8_t>(blue), 0};
}

constexpr std::array<tagPALETTEENTRY, 2> kBlackAndWhite = {Entry(0, 0, 0), Entry(255, 255, 255)};

constexpr std::array<tagPALETTEENTRY, 16> kStandardColors = {
    Entry(0, 0, 0),       Entry(128, 0, 0),   Entry(0, 128, 0),   Entry(128, 128, 0),
    Entry(0, 0, 128),     Entry(128, 0, 128), Entry(0, 128, 128), Entry(192, 192, 192),
    Entry(128, 128, 128), Entry(255, 0, 0),   Entry(0, 255, 0),   Entry(255, 255, 0),
    Entry(0, 0, 255),     Entry(255, 0, 255), Entry(0, 255, 255), Entry(255, 255, 255)};

// The four colors that 8-bit palettes hold beyond the 16 standard ones.
constexpr tagPALETTEENTRY kMoneyGreen = Entry(192, 220, 192), kSkyBlue = Entry(166, 202, 240),
                          kCream = Entry(255, 251, 240), kMediumGray = Entry(160, 160, 164);

// 10 dark standard colors, a 6 x 6 x 6 cube, 20 grays between those of the cube, 10 light standard
// colors.
std::vector<tagPALETTEENTRY> MakeDefault256() {
  std::vector<tagPALETTEENTRY> entries(kStandardColors.begin(), kStandardColors.begin() + 8);
  entries.push_back(kMoneyGreen);
  entries.push_back(kSkyBlue);
  for (int red = 0; red < 6; ++red) {
    for (int green = 0; green < 6; ++green) {
      for (int blue = 0; blue < 6; ++blue) {
        entries.push_back(Entry(red * 51, green * 51, blue * 51));
      }
    }
  }
  for (int i = 0; i < 20; ++i) {
    const int gray = i / 4 * 51 + (i % 4 + 1) * 51 / 5;
    entries.push_back(Entry(gray, gray, gray));
  }
  entries.push_back(kCream);
  entries.push_back(kMediumGray);
  entries.insert(entries.end(), kStandardColors.begin() + 8, kStandardColors.end());
  return entries;
}

}  // namespace

HPALETTE::HPALETTE(std::span<const tagPALETTEENTRY> entries) {
  if (entries.empty()) return;
  entries = entries.first(std::min<size_t>(entries.size(), 256));
  entries_ = std::make_shared<const std::vector<tagPALETTEENTRY>>(entries.begin(), entries.end());
}

std::span<const tagPALETTEENTRY> HPALETTE::Entries() const {
  if (!entries_) return {};
  return *entries_;
}

tagPALETTEENTRY HPALETTE::Entry(int index) const {
  if (index < 0 || index >= Count()) return {};
  return (*entries_)[static_cast<size_t>(index)];
}

bool operator==(const HPALETTE& a, const HPALETTE& b) {
  return a.entries_ == b.entries_ || std::ranges::equal(a.Entries(), b.Entries());
}

HPALETTE DefaultPalette(TPixelFormat format) {
  static const HPALETTE one{kBlackAndWhite};
  static const HPALETTE four{kStandardColors};
  static const HPALETTE eight{MakeDefault256()};
  switch (format) {
    case pf1bit:
      return one;
    case pf4bit:
      return four;
    case pf8bit:
      return eight;
    default:
      return {};
  }
}

HPALETTE GrayPalette(int count) {
  count = std::clamp(count, 2, 256);
  std::vector<tagPALETTEENTRY> entries;
  for (int i = 0; i < count; ++i) {
    const auto gray = static_cast<uint8_t>((i * 255 + (count - 1) / 2) / (count - 1));
    entries.push_back({gray, gray, gray, 0});
  }
  return HPALETTE(entries);
}

bool IsGrayRamp(const HPALETTE& palette) {
  if (palette.Count() != 256) return false;
  for (int i = 0; i < 256; ++i) {
    const tagPALETTEENTRY entry = palette.Entry(i);
    if (entry.peRed != i || entry.peGreen != i || entry.peBlue != i) return false;
  }
  return true;
}

TColorTable PaletteTable(const HPALETTE& palette) {
  TColorTable table{};
  std::ranges::copy(palette.Entries(), table.begin());
  return table;
}

int NearestEntry(std::span<const tagPALETTEENTRY> entries, TColor color) {
  int best = 0, bestDistance = INT32_MAX;
  for (size_t i = 0; i < entries.size() && bestDistance > 0; ++i) {
    const int red = entries[i].peRed - (color & 0xFF);
    const int green = entries[i].peGreen - (color >> 8 & 0xFF);
    const int blue = entries[i].peBlue - (color >> 16 & 0xFF);
    const int distance = red * red + green * green + blue * blue;
    if (distance >= bestDistance) continue;
    bestDistance = distance;
    best = static_cast<int>(i);
  }
  return best;
}

}  // namespace rasterkit
