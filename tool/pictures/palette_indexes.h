#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/graphics/bitmap.h>

/// Palette indexes of 1-, 4- and 8-bit bitmaps, pixel by pixel.
namespace rasterkit::tool {

/// True if the pixels of the bitmap are palette indexes.
bool HasIndexes(const TBitmap& bitmap);

/// Most entries that a palette of the bitmap's format can have: 2, 16 or 256.
int MostEntries(const TBitmap& bitmap);

int IndexAt(const TBitmap& bitmap, int x, int y);
void SetIndexAt(TBitmap& bitmap, int x, int y, int index);

/// Number of pixels per index.
std::array<uint64_t, 256> CountIndexes(const TBitmap& bitmap);

/// Replaces index i of every pixel by `table[i]`. Entries beyond those of the format are ignored.
void ReplaceIndexes(TBitmap& bitmap, const std::array<uint8_t, 256>& table);

}  // namespace rasterkit::tool
