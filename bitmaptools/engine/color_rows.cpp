#include <algorithm>

#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/host/graphics/bitmap.h>

namespace rasterkit::detail {
namespace {

using Table = std::array<uint8_t, 256>;

template <class Change>
void ChangeRows(TBitmap& bitmap, int32_t first, int32_t last, Spared spared, Change change) {
  const int width = bitmap.Width();
  for (int32_t y = first; y <= last; ++y) {
    auto* pixels = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y));
    for (int x = 0; x < width; ++x) {
      RGBrec& pixel = pixels[x];
      if (spared == Spared::none || IsNotBlackOrWhite(pixel.r, pixel.g, pixel.b)) change(pixel);
    }
  }
}

}  // namespace

Table ContrastTable(int32_t percent) {
  const double factor = BrightnessFactor(percent);
  Table table;
  for (int i = 0; i < 256; ++i)
    table[static_cast<size_t>(i)] =
        static_cast<uint8_t>(std::clamp<int64_t>(Round((i - 128) * factor) + 128, 0, 255));
  return table;
}

Table DarkenTable(int32_t percent) {
  const double factor = BrightnessFactor(percent);
  Table table;
  for (int i = 0; i < 256; ++i)
    table[static_cast<size_t>(i)] = static_cast<uint8_t>(Round(i * factor));
  return table;
}

void BrightenColor(int32_t percent, uint8_t& red, uint8_t& green, uint8_t& blue) {
  const float factor = BrightnessFactor(percent);
  if (percent < 0) {
    for (uint8_t* channel : {&red, &green, &blue})
      *channel = static_cast<uint8_t>(Round(*channel * static_cast<double>(factor)));
    return;
  }
  const int64_t gain = BrightnessGain(GrayValue(red, green, blue), BrightnessWeight(factor));
  for (uint8_t* channel : {&red, &green, &blue}) *channel = Brightened(*channel, factor, gain);
}

void ContrastRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared) {
  const Table table = ContrastTable(percent);
  ChangeRows(bitmap, first, last, spared, [&table](RGBrec& pixel) {
    pixel = {table[pixel.b], table[pixel.g], table[pixel.r]};
  });
}

void BrightenRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared) {
  if (percent == 0 || percent < -100 || percent > 100) return;
  ChangeRows(bitmap, first, last, spared,
             [percent](RGBrec& pixel) { BrightenColor(percent, pixel.r, pixel.g, pixel.b); });
}

}  // namespace rasterkit::detail
