#include <array>
#include <cstddef>
#include <cstdint>

#include <rasterkit/bitmaptools/engine/shift_colors.h>
#include <rasterkit/bitmaptools/pixels/clamp_to_byte.h>
#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit {
namespace {

using ChannelTable = std::array<uint8_t, 256>;

/// What the percentage makes of each channel value. The product of a channel and a single is exact
/// in double, so that it is rounded to single once.
ChannelTable TableOf(float percent) {
  const auto factor = static_cast<float>(static_cast<double>(percent) / 100 + 1);
  ChannelTable table{};
  for (size_t i = 0; i < table.size(); ++i)
    table[i] = detail::ClampToByte(static_cast<float>(static_cast<double>(i) * factor));
  return table;
}

}  // namespace

void ShiftColors(TBitmap* bitmap, float red, float green, float blue) {
  if (bitmap == nullptr || bitmap->Empty()) return;
  bitmap->SetPixelFormat(pf24bit);
  const ChannelTable reds = TableOf(red), greens = TableOf(green), blues = TableOf(blue);
  for (int y = 0; y < bitmap->Height(); ++y) {
    auto* const row = reinterpret_cast<RGBrec*>(bitmap->ScanLine(y));
    for (int x = 0; x < bitmap->Width(); ++x)
      row[x] = {blues[row[x].b], greens[row[x].g], reds[row[x].r]};
  }
  bitmap->SetModified(true);
}

}  // namespace rasterkit
