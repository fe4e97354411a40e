#include <algorithm>

#include <rasterkit/bitmaptools/engine/color_rows.h>
#include <rasterkit/bitmaptools/engine/mixing.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/kernels/mix/mix_rows.h>
#include <rasterkit/kernels/rows/byte_map.h>
#include <rasterkit/kernels/transfer/brighten.h>
#include <rasterkit/kernels/transfer/pixel_masks.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

using Table = std::array<uint8_t, 256>;

/// Rows are processed in parts that stay in the first-level cache.
constexpr size_t kPart = 1024;

/// Which rows of a pf24bit bitmap are changed, and how.
struct Rows {
  TBitmap& bitmap;
  int32_t first, last;
  Spared spared;
  const KeepsGoing& keepsGoing;
};

/// Calls `change(pixels, width)` for parts of each row.
template <class Change>
void ChangeAll(const Rows& rows, Change change) {
  const auto width = static_cast<size_t>(rows.bitmap.Width());
  for (int32_t y = rows.first; y <= rows.last; ++y) {
    if (rows.keepsGoing && !rows.keepsGoing()) return;
    RequireTime();
    uint8_t* row = rows.bitmap.ScanLine(y);
    for (size_t x = 0; x < width; x += kPart) change(row + 3 * x, std::min(kPart, width - x));
  }
}

template <class Change>
void ChangeRows(const Rows& rows, Change change) {
  if (rows.spared == Spared::none) return ChangeAll(rows, change);
  std::array<uint8_t, 3 * kPart> changed, kept;
  ChangeAll(rows, [&](uint8_t* pixels, size_t width) {
    if (!kernels::MayHoldBlackOrWhite24(pixels, width)) return change(pixels, width);
    std::copy_n(pixels, 3 * width, changed.data());
    change(changed.data(), width);
    kernels::BlackOrWhite24(pixels, width, kept.data());
    kernels::TakeRow(pixels, changed.data(), kept.data(), 3 * width);
  });
}

void MapRows(const Rows& rows, const kernels::ByteMap& map) {
  ChangeRows(rows,
             [&map](uint8_t* pixels, size_t width) { kernels::MapBytes(map, pixels, 3 * width); });
}

}  // namespace

Table ContrastTable(int32_t percent) {
  const double factor = BrightnessFactor(percent);
  Table table;
  for (int i = 0; i < 256; ++i) {
    table[static_cast<size_t>(i)] =
        static_cast<uint8_t>(std::clamp<int64_t>(Round((i - 128) * factor) + 128, 0, 255));
  }
  return table;
}

Table DarkenTable(int32_t percent) {
  const double factor = BrightnessFactor(percent);
  Table table;
  for (int i = 0; i < 256; ++i) {
    table[static_cast<size_t>(i)] = static_cast<uint8_t>(Round(i * factor));
  }
  return table;
}

void BrightenColor(int32_t percent, uint8_t& red, uint8_t& green, uint8_t& blue) {
  const float factor = BrightnessFactor(percent);
  if (percent < 0) {
    for (uint8_t* channel : {&red, &green, &blue}) {
      *channel = static_cast<uint8_t>(Round(*channel * static_cast<double>(factor)));
    }
    return;
  }
  const int64_t gain = BrightnessGain(GrayValue(red, green, blue), BrightnessWeight(factor));
  for (uint8_t* channel : {&red, &green, &blue}) *channel = Brightened(*channel, factor, gain);
}

void ContrastRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared,
                  const KeepsGoing& keepsGoing) {
  MapRows({bitmap, first, last, spared, keepsGoing},
          kernels::MakeByteMap(ContrastTable(percent), BrightnessFactor(percent), 128));
}

void BrightenRows(TBitmap& bitmap, int32_t first, int32_t last, int32_t percent, Spared spared,
                  const KeepsGoing& keepsGoing) {
  if (percent == 0 || percent < -100 || percent > 100) return;
  const Rows rows{bitmap, first, last, spared, keepsGoing};
  const float factor = BrightnessFactor(percent);
  if (percent < 0) {
    const auto map = kernels::MakeByteMap(DarkenTable(percent), factor, 0);
    return MapRows(rows, map);
  }
  const auto brightening = kernels::MakeBrightening(percent, factor, BrightnessWeight(factor));
  ChangeRows(rows, [&brightening](uint8_t* pixels, size_t width) {
    kernels::BrightenRow24(brightening, pixels, width, pixels);
  });
}

}  // namespace rasterkit::detail
