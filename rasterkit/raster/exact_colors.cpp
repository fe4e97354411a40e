#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/raster/exact_colors.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

// Up to 256 colors, numbered in the order of their first appearance; open addressing, at most a
// quarter full.
class ColorNumbers {
 public:
  explicit ColorNumbers(int limit) : limit_(limit) { slots_.fill(kFree); }

  // Number of the color; -1 if it would exceed the limit.
  int Find(uint32_t color) {
    uint32_t slot = color * 0x9E3779B1u >> 22;
    while (slots_[slot] != kFree) {
      if ((slots_[slot] & 0xFFFFFF) == color) return static_cast<int>(slots_[slot] >> 24);
      slot = (slot + 1) % kSlots;
    }
    if (count_ == limit_) return -1;
    slots_[slot] = color | static_cast<uint64_t>(count_) << 24;
    colors_[static_cast<size_t>(count_)] = color;
    return count_++;
  }

  int Count() const { return count_; }
  uint32_t Color(int number) const { return colors_[static_cast<size_t>(number)]; }

 private:
  static constexpr uint32_t kSlots = 1024;
  static constexpr uint64_t kFree = ~uint64_t{0};
  std::array<uint64_t, kSlots> slots_;
  std::array<uint32_t, 256> colors_{};
  int limit_;
  int count_ = 0;
};

constexpr uint32_t Key(const RGBArec& pixel) {
  return static_cast<uint32_t>(pixel.r) << 16 | static_cast<uint32_t>(pixel.g) << 8 | pixel.b;
}

bool AllGray(const ColorNumbers& numbers) {
  for (int i = 0; i < numbers.Count(); ++i) {
    const uint32_t color = numbers.Color(i);
    if ((color & 0xFF) * 0x010101u != color) return false;
  }
  return true;
}

// The bytes of a gray picture are its gray values, with the gray ramp as palette.
void UseGrayRamp(const ColorNumbers& numbers, Raster& target) {
  for (int y = 0; y < target.Height(); ++y) {
    uint8_t* row = target.Row(y);
    for (int x = 0; x < target.Width(); ++x) row[x] = static_cast<uint8_t>(numbers.Color(row[x]));
  }
  target.palette = GrayPalette(256);
}

HPALETTE PaletteOf(const ColorNumbers& numbers, size_t count) {
  std::vector<tagPALETTEENTRY> entries(count);
  for (int i = 0; i < numbers.Count(); ++i) {
    const uint32_t color = numbers.Color(i);
    entries[static_cast<size_t>(i)] = {static_cast<uint8_t>(color >> 16),
                                       static_cast<uint8_t>(color >> 8),
                                       static_cast<uint8_t>(color), 0};
  }
  return HPALETTE(entries);
}

}  // namespace

bool MapExactColors(const Raster& source, Raster& target) {
  const int limit = 1 << std::min(StoredBitsPerPixel(target.Format()), 8);
  ColorNumbers numbers(limit);
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  std::vector<uint8_t> indexes(pixels.size());
  uint32_t lastColor = ~0u;
  int last = 0;
  for (int y = 0; y < source.Height(); ++y) {
    RequireTime();
    RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
    for (size_t x = 0; x < pixels.size(); ++x) {
      const uint32_t color = Key(pixels[x]);
      if (color != lastColor) {
        last = numbers.Find(color);
        if (last < 0) return false;
        lastColor = color;
      }
      indexes[x] = static_cast<uint8_t>(last);
    }
    PackIndexes(indexes.data(), target.Format(), source.Width(), target.Row(y));
  }
  if (target.Format() == pf8bit && AllGray(numbers)) {
    UseGrayRamp(numbers, target);
  } else {
    target.palette = PaletteOf(numbers, static_cast<size_t>(limit));
  }
  target.ClearPadding();
  return true;
}

}  // namespace rasterkit
