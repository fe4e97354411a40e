#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include <rasterkit/raster/exact_colors.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

constexpr uint32_t kColorBits = 0xFFFFFF;

constexpr uint32_t Key(const RGBArec& pixel) {
  return static_cast<uint32_t>(pixel.r) << 16 | static_cast<uint32_t>(pixel.g) << 8 | pixel.b;
}

constexpr bool IsGray(uint32_t color) {
  return (color & 0xFF) * 0x010101u == color;
}

}  // namespace

ExactColors::ExactColors(TPixelFormat format)
    : format_(format), limit_(1 << std::min(StoredBitsPerPixel(format), 8)) {
  slots_.fill(kFree);
}

uint32_t ExactColors::SlotOf(uint32_t color) const {
  uint32_t slot = color * 0x9E3779B1u >> 22;
  while (slots_[slot] != kFree && (slots_[slot] & kColorBits) != color) slot = (slot + 1) % kSlots;
  return slot;
}

int ExactColors::NumberOf(uint32_t color) {
  const uint32_t slot = SlotOf(color);
  if (slots_[slot] != kFree) return static_cast<int>(slots_[slot] >> 24);
  if (count_ == limit_) return -1;
  slots_[slot] = color | static_cast<uint64_t>(count_) << 24;
  colors_[static_cast<size_t>(count_)] = color;
  return count_++;
}

bool ExactColors::Add(const RGBArec* pixels, size_t count, uint8_t* numbers) {
  for (size_t i = 0; i < count; ++i) {
    const uint32_t color = Key(pixels[i]);
    if (color != lastColor_) {
      last_ = NumberOf(color);
      if (last_ < 0) return false;
      lastColor_ = color;
    }
    if (numbers != nullptr) numbers[i] = static_cast<uint8_t>(last_);
  }
  return true;
}

void ExactColors::Find(const RGBArec* pixels, size_t count, uint8_t* numbers) const {
  uint32_t lastColor = ~0u;
  uint8_t last = 0;
  for (size_t i = 0; i < count; ++i) {
    const uint32_t color = Key(pixels[i]);
    if (color != lastColor) {
      last = static_cast<uint8_t>(slots_[SlotOf(color)] >> 24);
      lastColor = color;
    }
    numbers[i] = last;
  }
}

bool ExactColors::AreGrays() const {
  return format_ == pf8bit && std::all_of(colors_.begin(), colors_.begin() + count_, IsGray);
}

HPALETTE ExactColors::Palette() const {
  if (AreGrays()) return GrayPalette(256);
  std::vector<tagPALETTEENTRY> entries(static_cast<size_t>(limit_));
  for (size_t i = 0; i < static_cast<size_t>(count_); ++i) {
    entries[i] = {static_cast<uint8_t>(colors_[i] >> 16), static_cast<uint8_t>(colors_[i] >> 8),
                  static_cast<uint8_t>(colors_[i]), 0};
  }
  return HPALETTE(entries);
}

std::array<uint8_t, 256> ExactColors::Indexes() const {
  std::array<uint8_t, 256> indexes{};
  std::iota(indexes.begin(), indexes.end(), uint8_t{0});
  if (!AreGrays()) return indexes;
  for (size_t i = 0; i < static_cast<size_t>(count_); ++i) {
    indexes[i] = static_cast<uint8_t>(colors_[i]);
  }
  return indexes;
}

bool MapExactColors(const Raster& source, Raster& target) {
  ExactColors colors(target.Format());
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  std::vector<uint8_t> numbers(pixels.size());
  for (int y = 0; y < source.Height(); ++y) {
    RequireTime();
    RowTo32(source.Row(y), source.Format(), source.Width(), table, pixels.data());
    if (!colors.Add(pixels.data(), pixels.size(), numbers.data())) return false;
    PackIndexes(numbers.data(), target.Format(), source.Width(), target.Row(y));
  }
  target.palette = colors.Palette();
  // The bytes of a gray picture are its gray values, with the gray ramp as palette.
  if (colors.AreGrays()) {
    const std::array<uint8_t, 256> indexes = colors.Indexes();
    for (int y = 0; y < target.Height(); ++y) {
      uint8_t* row = target.Row(y);
      for (int x = 0; x < target.Width(); ++x) row[x] = indexes[row[x]];
    }
  }
  target.ClearPadding();
  return true;
}

}  // namespace rasterkit
