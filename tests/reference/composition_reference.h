#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/reference/color.h"
#include "tests/reference/extended.h"
#include "tests/reference/gray.h"

/// Composition of bitmaps written straight from its rules, slow and obvious.
namespace rasterkit::reference {

/// A pixel's stored bits as a number.
inline uint32_t StoredPixel(const TBitmap& bitmap, int x, int y) {
  const uint8_t* row = bitmap.ScanLine(y);
  const int bits = bitmap.StoredBits();
  if (bits == 1) return row[x / 8] >> (7 - x % 8) & 1;
  if (bits == 4) return row[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15;
  uint32_t value = 0;
  std::memcpy(&value, row + x * (bits / 8), static_cast<size_t>(bits / 8));
  return value;
}

inline void SetStoredPixel(TBitmap& bitmap, int x, int y, uint32_t value) {
  uint8_t* row = bitmap.ScanLine(y);
  const int bits = bitmap.StoredBits();
  if (bits >= 8) {
    std::memcpy(row + x * (bits / 8), &value, static_cast<size_t>(bits / 8));
    return;
  }
  const int perByte = 8 / bits;
  const int shift = (perByte - 1 - x % perByte) * bits;
  const int mask = ((1 << bits) - 1) << shift;
  const int kept = row[x / perByte] & ~mask;
  row[x / perByte] = static_cast<uint8_t>(kept | (static_cast<int>(value) << shift & mask));
}

inline void SwapAlpha(TBitmap& bitmap) {
  if (bitmap.PixelFormat() != pf32bit) return;
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) {
      auto& pixel = reinterpret_cast<RGBArec*>(bitmap.ScanLine(y))[x];
      pixel.a = pixel.a != 0 ? 0 : 255;
    }
  }
}

/// The mirror by its parallelogram: upper-left (w - 1, 0), upper-right (0, 0), lower-left (w - 1,
/// h - 1), or the same standing on its head; the source is one pixel short both ways. A target
/// pixel is written when its center lies inside, from the source pixel that its center falls into.
inline void SwapBitmap(bool horizontal, TBitmap& bitmap) {
  const std::unique_ptr<TBitmap> copy = bitmap.Clone();
  const int w = bitmap.Width(), h = bitmap.Height();
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      // Pixel centers, counted in halves of a pixel.
      const int u = horizontal ? 2 * (w - 1) - (2 * x + 1) : 2 * x + 1;
      const int v = horizontal ? 2 * y + 1 : 2 * (h - 1) - (2 * y + 1);
      if (u < 0 || v < 0 || u >= 2 * (w - 1) || v >= 2 * (h - 1)) continue;
      SetStoredPixel(bitmap, x, y, StoredPixel(*copy, u / 2, v / 2));
    }
  }
}

/// One channel of a pixel of gray `gray` under a watermark of strength `v`; extended arithmetic,
/// singles where a value is stored or handed over as single.
inline uint8_t WatermarkedChannel(uint8_t c, uint8_t gray, uint8_t v) {
  if (v >= 250) return c;
  if (gray <= 127) {
    const auto f = static_cast<float>(1 - Extended(v) / 255);
    return ClampToByte(static_cast<float>(c + (255 - c) * Extended(f)));
  }
  const Extended above = Extended(gray) / 255 - 0.5;
  const auto f = static_cast<float>((above * (255 - v) + v) / 255);
  return static_cast<uint8_t>(RoundEven(c * Extended(f)));
}

inline std::unique_ptr<TBitmap> WaterMarkedBitmap(const TGraphic& graphic, TBitmap& watermark) {
  auto result = std::make_unique<TBitmap>();
  result->Assign(&graphic);
  result->SetPixelFormat(pf24bit);
  watermark.SetPixelFormat(pf8bit);
  if (watermark.Empty() || result->Empty()) return result;
  const auto sx = static_cast<float>(Extended(watermark.Width()) / result->Width());
  const auto sy = static_cast<float>(Extended(watermark.Height()) / result->Height());
  for (int y = 0; y < result->Height(); ++y) {
    const uint8_t* mark = watermark.ScanLine(static_cast<int>(y * Extended(sy)));
    auto* row = reinterpret_cast<RGBrec*>(result->ScanLine(y));
    for (int x = 0; x < result->Width(); ++x) {
      const uint8_t index = mark[static_cast<int>(x * Extended(sx))];
      const uint8_t v = watermark.Palette().Entry(index).peRed;
      const uint8_t gray = GrayInWholeNumbers(row[x].r, row[x].g, row[x].b);
      row[x].b = WatermarkedChannel(row[x].b, gray, v);
      row[x].g = WatermarkedChannel(row[x].g, gray, v);
      row[x].r = WatermarkedChannel(row[x].r, gray, v);
    }
  }
  return result;
}

/// Saves both and compares the streams. The bitmaps must have pixels.
inline bool BitmapsAreSame(TBitmap& a, TBitmap& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) return false;
  TMemoryStream first, second;
  a.SaveToStream(first);
  b.SaveToStream(second);
  return std::ranges::equal(first.Bytes(), second.Bytes());
}

}  // namespace rasterkit::reference
