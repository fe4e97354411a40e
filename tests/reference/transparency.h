#pragma once

#include <algorithm>
#include <cstring>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/palette.h>

#include "tests/reference/gray.h"
#include "tests/reference/palettes.h"

/// Transparency operations written straight from their rules, pixel by pixel, slow and obvious.
namespace rasterkit::reference {

inline uint8_t GrayOfEntry(const tagPALETTEENTRY& entry) {
  return GrayInWholeNumbers(entry.peRed, entry.peGreen, entry.peBlue);
}

inline bool IsPureWhite(const tagPALETTEENTRY& entry) {
  return entry.peRed == 255 && entry.peGreen == 255 && entry.peBlue == 255;
}

inline uint8_t GrayOfWord565(uint16_t word) {
  if (word == 0) return 0;
  if (word == 0xFFFF) return GrayInWholeNumbers(255, 255, 255);
  const auto red = static_cast<uint8_t>((word >> 11) * 8);
  const auto green = static_cast<uint8_t>(((word >> 5) & 0x3F) * 4);
  const auto blue = static_cast<uint8_t>((word & 0x1F) * 8);
  return GrayInWholeNumbers(red, green, blue);
}

/// Both recoloring operations; `isMeant` is asked about the gray of each pixel.
template <class IsMeant>
void SetColorByGray(TBitmap& bitmap, bool handles16, IsMeant isMeant, uint8_t red, uint8_t green,
                    uint8_t blue, uint8_t alpha) {
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) {
      uint8_t* row = bitmap.ScanLine(y);
      if (bitmap.PixelFormat() == pf16bit && handles16) {
        uint16_t word;
        std::memcpy(&word, row + 2 * x, 2);
        if (!isMeant(GrayOfWord565(word))) continue;
        word = static_cast<uint16_t>((red >> 3 << 11) | (green >> 2 << 5) | blue >> 3);
        std::memcpy(row + 2 * x, &word, 2);
      } else if (bitmap.PixelFormat() == pf24bit) {
        auto& pixel = reinterpret_cast<RGBrec*>(row)[x];
        if (isMeant(GrayInWholeNumbers(pixel.r, pixel.g, pixel.b))) pixel = {blue, green, red};
      } else if (bitmap.PixelFormat() == pf32bit) {
        auto& pixel = reinterpret_cast<RGBArec*>(row)[x];
        if (isMeant(GrayInWholeNumbers(pixel.r, pixel.g, pixel.b)))
          pixel = {blue, green, red, alpha};
      }
    }
  }
}

inline void SetColorAbGray(TBitmap& bitmap, uint8_t threshold, uint8_t red, uint8_t green,
                           uint8_t blue, uint8_t alpha) {
  SetColorByGray(
      bitmap, true, [=](uint8_t gray) { return gray > threshold; }, red, green, blue, alpha);
}

inline void SetColorBisGray(TBitmap& bitmap, uint8_t threshold, uint8_t red, uint8_t green,
                            uint8_t blue, uint8_t alpha) {
  SetColorByGray(
      bitmap, false, [=](uint8_t gray) { return gray < threshold; }, red, green, blue, alpha);
}

/// Bytes of a row that are looked at; a row that is too short for its palette's rule ends earlier.
inline int BytesOfRow(const TBitmap& bitmap, int bytes) {
  return std::min(bytes, (bitmap.Width() * bitmap.StoredBits() + 7) / 8);
}

/// Replaces one byte of two pixels: both become what `change` makes of the high one.
template <class Change>
void ChangePair(uint8_t& byte, Change change) {
  if (byte == 0) return;
  const uint8_t high = byte >> 4, low = byte >> 4;
  byte = static_cast<uint8_t>(change(low) | (change(high) << 4));
}

/// Applies `change` to every pixel by the rule of a palette of 16 or 256 entries.
template <class Change>
void ChangePixels(TBitmap& bitmap, int count, Change change) {
  const int w = bitmap.Width();
  for (int y = 0; y < bitmap.Height(); ++y) {
    uint8_t* row = bitmap.ScanLine(y);
    if (count == 256) {
      for (int x = 0; x < BytesOfRow(bitmap, w); ++x) row[x] = change(row[x]);
    } else {
      for (int i = 0; i < BytesOfRow(bitmap, (w + 1) / 2); ++i) ChangePair(row[i], change);
    }
  }
}

inline void SetPaletteToTransparent(TBitmap& bitmap, uint8_t threshold) {
  const int count = bitmap.Palette().Count();
  if (count != 16 && count != 256) return;
  TColorTable entries = PaletteTable(bitmap.Palette());
  int white = -1;
  int brightest = 0;
  int best = 3;
  for (int i = count - 1; i >= 0 && white == -1; --i) {
    const tagPALETTEENTRY& entry = entries[static_cast<size_t>(i)];
    const int sum = entry.peRed + entry.peGreen + entry.peBlue;
    if (IsPureWhite(entry)) white = i;
    if (sum > best) {
      best = sum;
      brightest = i;
    }
  }
  if (white == -1) {
    white = brightest;
    tagPALETTEENTRY& entry = entries[static_cast<size_t>(white)];
    entry.peRed = entry.peGreen = entry.peBlue = 255;
    bitmap = reference::ChangePalColors(bitmap, entries, count);
  }
  ChangePixels(bitmap, count, [&](uint8_t index) {
    if (count == 256 && index == 0) return index;
    return GrayOfEntry(entries[index]) > threshold ? static_cast<uint8_t>(white) : index;
  });
}

inline void SetToTransparent(TBitmap& bitmap, uint8_t threshold) {
  if (threshold == 255) return;
  if (bitmap.Palette())
    SetPaletteToTransparent(bitmap, threshold);
  else
    SetColorAbGray(bitmap, threshold, 255, 255, 255, 255);
}

inline void CheckTransColForPDF(TBitmap& bitmap) {
  if (bitmap.Width() == 0 || bitmap.Height() == 0) return;
  uint8_t* corner = bitmap.ScanLine(bitmap.Height() - 1);
  const TPixelFormat format = bitmap.PixelFormat();
  const int count = bitmap.Palette().Count();
  if (count == 0) {
    if (format == pf16bit) std::memset(corner, 255, 2);
    if (format == pf24bit || format == pf32bit) std::memset(corner, 255, 3);
    return;
  }
  if (count != 16 && count != 256) return;
  TColorTable entries = PaletteTable(bitmap.Palette());
  const int last = count - 1;
  int w = last;
  while (w >= 0 && !IsPureWhite(entries[static_cast<size_t>(w)])) --w;
  if (w == -1) w = last;
  if (w < last) {
    tagPALETTEENTRY& a = entries[static_cast<size_t>(w)];
    tagPALETTEENTRY& b = entries[static_cast<size_t>(last)];
    std::swap(a, b);
    std::swap(a.peFlags, b.peFlags);
    bitmap = reference::ChangePalColors(bitmap, entries, count);
    ChangePixels(bitmap, count, [w, last](uint8_t index) {
      if (index == w) return static_cast<uint8_t>(last);
      if (index == last) return static_cast<uint8_t>(w);
      return index;
    });
  }
  corner = bitmap.ScanLine(bitmap.Height() - 1);
  *corner = count == 256 ? 255 : static_cast<uint8_t>(15 << 4 | *corner >> 4);
}

inline void SetTransColor(TBitmap& bitmap, TColor color) {
  if (bitmap.PixelFormat() != pf24bit || bitmap.Width() == 0 || bitmap.Height() == 0) return;
  const uint32_t bits = color < 0 ? 0 : static_cast<uint32_t>(color);
  const RGBrec reference = *reinterpret_cast<RGBrec*>(bitmap.ScanLine(bitmap.Height() - 1));
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) {
      auto& pixel = reinterpret_cast<RGBrec*>(bitmap.ScanLine(y))[x];
      if (pixel.b != reference.b || pixel.g != reference.g || pixel.r != reference.r) continue;
      pixel = {static_cast<uint8_t>(bits >> 16), static_cast<uint8_t>(bits >> 8),
               static_cast<uint8_t>(bits)};
    }
  }
}

inline void ResetTransparent(TBitmap& bitmap) {
  if (!bitmap.Transparent()) return;
  if (bitmap.PixelFormat() != pf32bit) return;
  for (int y = 0; y < bitmap.Height(); ++y) {
    for (int x = 0; x < bitmap.Width(); ++x) {
      auto& pixel = reinterpret_cast<RGBArec*>(bitmap.ScanLine(y))[x];
      if (pixel.a == 0) pixel = RGBArec{255, 255, 255, 255};
    }
  }
  bitmap.SetTransparent(false);
}

}  // namespace rasterkit::reference
