#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/export.h>

/// Palette indexes of 1-, 4- and 8-bit bitmaps, pixel by pixel.
namespace rasterkit::detail {

/// True if the pixels of the bitmap are palette indexes.
RASTERKIT_EXPORT bool HasIndexes(const TBitmap& bitmap);

/// Most entries that a palette of the bitmap's format can have: 2, 16 or 256.
RASTERKIT_EXPORT int MostEntries(const TBitmap& bitmap);

RASTERKIT_EXPORT int IndexAt(const TBitmap& bitmap, int x, int y);
RASTERKIT_EXPORT void SetIndexAt(TBitmap& bitmap, int x, int y, int index);

/// Number of pixels per index.
RASTERKIT_EXPORT std::array<uint64_t, 256> CountIndexes(const TBitmap& bitmap);

/// Replaces index i of every pixel by `table[i]`. Entries beyond those of the format are ignored.
RASTERKIT_EXPORT void ReplaceIndexes(TBitmap& bitmap, const std::array<uint8_t, 256>& table);

}  // namespace rasterkit::detail
