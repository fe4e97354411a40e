#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>

#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/bitmaptools/pixels/palette_merge.h>
#include <rasterkit/bitmaptools/pixels/palette_tools.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// `CreateColorPalette` rounds this up to 256 entries, of which the last is black.
constexpr int32_t kCommonEntries = 255;

/// The 256 entries of the common palette while they are assigned.
class CommonPalette {
 public:
  CommonPalette() { slots_.fill(kFree); }

  /// Finds an entry for a color that a bitmap has at `index`; false if other colors use all of
  /// them.
  bool Take(TColor color, uint8_t index) {
    if (slots_[index] == kFree) slots_[index] = color;
    if (slots_[index] == color || Holds(color)) return true;
    const auto firstFree = std::find(slots_.begin(), slots_.end(), kFree);
    if (firstFree == slots_.end()) return false;
    *firstFree = color;
    return true;
  }

  /// Colors of the entries. A free entry holds a system color, which `GetRGB` makes black.
  std::unique_ptr<TColorTable> Table() const {
    auto table = std::make_unique<TColorTable>();
    for (size_t i = 0; i < slots_.size(); ++i) {
      tagPALETTEENTRY& entry = (*table)[i];
      GetRGB(slots_[i], entry.peRed, entry.peGreen, entry.peBlue);
    }
    return table;
  }

 private:
  static constexpr TColor kFree = -1;

  bool Holds(TColor color) const {
    return std::find(slots_.begin(), slots_.end(), color) != slots_.end();
  }

  std::array<TColor, 256> slots_;
};

/// Assigns an entry to each index that the bitmap uses, in order of appearance.
bool TakeColorsOf(const TBitmap& bitmap, CommonPalette& common) {
  const HPALETTE palette = bitmap.Palette();
  const size_t bytes = std::min(static_cast<size_t>(bitmap.Width()), bitmap.Stride());
  std::bitset<256> met;
  for (int y = 0; y < bitmap.Height(); ++y) {
    const uint8_t* row = bitmap.ScanLine(y);
    for (size_t x = 0; x < bytes; ++x) {
      const uint8_t index = row[x];
      if (met[index]) continue;
      met[index] = true;
      const tagPALETTEENTRY entry = palette.Entry(index);
      if (!common.Take(RGB(entry.peRed, entry.peGreen, entry.peBlue), index)) return false;
    }
  }
  return true;
}

}  // namespace

std::unique_ptr<TColorTable> CombineColorPalette(std::span<TBitmap* const> bitmaps) {
  CommonPalette common;
  for (const TBitmap* bitmap : bitmaps) {
    if (bitmap == nullptr || TakeColorsOf(*bitmap, common)) continue;
    ShowMessage(ResourceString(rsPaletteExceeded));
    return nullptr;
  }
  auto table = common.Table();
  const HPALETTE palette = CreateColorPalette(*table, kCommonEntries);
  for (TBitmap* bitmap : bitmaps) {
    if (bitmap != nullptr) bitmap->SetPalette(palette);
  }
  return table;
}

}  // namespace rasterkit
