#include <array>
#include <cstddef>
#include <cstdint>

#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

using ChannelTable = std::array<uint8_t, 256>;

/// NaN becomes 0.
uint8_t RoundedAndCut(double value) {
  if (value > 255) return 255;
  return value >= 0 ? static_cast<uint8_t>(Round(value)) : uint8_t{0};
}

}  // namespace

/// The product of a channel and a single is exact in double and must not be rounded to single: 15
/// times 1.3 is a little less than 19.5 and becomes 19.
std::array<uint8_t, 256> detail::ShiftTable(float percent) {
  const auto factor = static_cast<float>(static_cast<double>(percent) / 100 + 1);
  ChannelTable table{};
  for (size_t i = 0; i < table.size(); ++i) {
    table[i] = RoundedAndCut(static_cast<double>(i) * factor);
  }
  return table;
}

void ShiftColors(TBitmap* bitmap, float red, float green, float blue) {
  if (bitmap == nullptr || bitmap->Empty()) return;
  bitmap->SetPixelFormat(pf24bit);
  const ChannelTable reds = detail::ShiftTable(red), greens = detail::ShiftTable(green),
                     blues = detail::ShiftTable(blue);
  for (int y = 0; y < bitmap->Height(); ++y) {
    auto* const row = reinterpret_cast<RGBrec*>(bitmap->ScanLine(y));
    for (int x = 0; x < bitmap->Width(); ++x) {
      row[x] = {blues[row[x].b], greens[row[x].g], reds[row[x].r]};
    }
  }
  bitmap->SetModified(true);
}

}  // namespace rasterkit
