#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/palette.h>

/// Palette operations written straight from their rules, slow and obvious.
namespace rasterkit::reference {

/// The bitmap that `ChangePalColors` leaves behind, without transparency and the like.
inline TBitmap ChangePalColors(const TBitmap& source, const TColorTable& entries, int32_t count) {
  TBitmap result;
  result.SetPixelFormat(source.PixelFormat());
  result.SetSize(source.Width(), source.Height());
  std::vector<tagPALETTEENTRY> colors(static_cast<size_t>(count <= 16 ? std::max(count, 0) : 256));
  for (int i = 0; i < std::min(count, 256); ++i)
    colors[static_cast<size_t>(i)] = entries[static_cast<size_t>(i)];
  result.SetPalette(HPALETTE(colors));
  const int w = source.Width();
  int bytes = w;
  if (count == 2) {
    bytes = static_cast<int>(std::nearbyint(w / 8.0L));
    if (w % 8 != 0) ++bytes;
  } else if (count == 16) {
    bytes = w % 2 == 0 ? w / 2 : (w + 1) / 2;
  }
  bytes = std::min(bytes, static_cast<int>(source.Stride()));
  for (int y = 0; y < source.Height() && bytes > 0; ++y)
    std::memcpy(result.ScanLine(y), source.ScanLine(y), static_cast<size_t>(bytes));
  return result;
}

/// The 256 slots of the common palette (-1 is free), or nothing when they do not suffice.
inline std::optional<std::vector<TColor>> CombineColorPalette(std::span<TBitmap* const> bitmaps) {
  std::vector<std::vector<int32_t>> map(bitmaps.size() + 1, std::vector<int32_t>(256, -1));
  std::vector<int32_t>& slots = map[0];
  for (size_t i = 0; i < bitmaps.size(); ++i) {
    const TBitmap& bitmap = *bitmaps[i];
    const auto width = std::min(static_cast<size_t>(bitmap.Width()), bitmap.Stride());
    for (int y = 0; y < bitmap.Height(); ++y) {
      for (size_t x = 0; x < width; ++x) {
        const uint8_t k = bitmap.ScanLine(y)[x];
        if (map[i + 1][k] != -1) continue;
        const tagPALETTEENTRY entry = bitmap.Palette().Entry(k);
        const int32_t c = entry.peRed | entry.peGreen << 8 | entry.peBlue << 16;
        int slot = -1;
        if (slots[k] == -1 || slots[k] == c) slot = k;
        for (int j = 0; slot == -1 && j < 256; ++j)
          if (slots[static_cast<size_t>(j)] == c) slot = j;
        for (int j = 0; slot == -1 && j < 256; ++j)
          if (slots[static_cast<size_t>(j)] == -1) slot = j;
        if (slot == -1) return std::nullopt;
        map[i + 1][k] = slot;
        slots[static_cast<size_t>(slot)] = c;
      }
    }
  }
  return slots;
}

}  // namespace rasterkit::reference
