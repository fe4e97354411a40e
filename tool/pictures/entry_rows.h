#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/graphics/bitmap.h>

/// Palette indexes of 1-, 4- and 8-bit bitmaps, every pixel for itself.
namespace rasterkit::tool {

/// Whether the bitmap has indexes at all.
bool HasIndexes(const TBitmap& bitmap);

/// How many entries a palette of the bitmap's format can have: 2, 16 or 256.
int MostEntries(const TBitmap& bitmap);

int IndexAt(const TBitmap& bitmap, int x, int y);
void SetIndexAt(TBitmap& bitmap, int x, int y, int index);

/// How many pixels have each index.
std::array<uint64_t, 256> CountIndexes(const TBitmap& bitmap);

/// Every pixel of index i gets index `table[i]`; entries beyond the format's are not looked at.
void ReplaceIndexes(TBitmap& bitmap, const std::array<uint8_t, 256>& table);

}  // namespace rasterkit::tool
