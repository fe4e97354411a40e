#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// Palettes of bitmaps, and single pixels of 4- and 8-bit bitmaps. Call these functions on the
/// thread that owns the bitmap. Coordinates are clamped to the bitmap.
namespace rasterkit {

class TBitmap;

/// Makes a palette of the first `count` entries. Up to 16, it has exactly these; from 17 on it
/// always has 256, the others black. 0 or less gives the empty handle; more than 256 counts as 256.
RASTERKIT_EXPORT HPALETTE CreateColorPalette(const TColorTable& entries, int32_t count);

/// Reads a palette into a new table, which the caller owns; entries beyond the palette are black.
/// Returns the number of entries; if it is 0, `entries` does not change.
RASTERKIT_EXPORT int32_t GetPaletteColors(const HPALETTE& palette,
                                          std::unique_ptr<TColorTable>& entries);

/// Replaces the palette by `CreateColorPalette(entries, count)` while every pixel keeps its index;
/// transparency, resolution and profile stay.
///
/// The number of entries, not the format, decides which bytes of a row are kept: 2 entries keep the
/// bytes of a 1-bit row, 16 entries those of a 4-bit row, any other number one byte per pixel. The
/// rest of a row becomes as white as in a new bitmap: an 8-bit bitmap that gets 16 entries loses
/// its right half.
RASTERKIT_EXPORT void ChangePalColors(TBitmap& bitmap, const TColorTable& entries, int32_t count);

/// Changes the color of the palette entry that the top-left pixel uses. The host resolves a system
/// color. No-op for formats other than pf4bit and pf8bit, empty bitmaps and an index beyond the
/// palette.
RASTERKIT_EXPORT void ChgFirstPixCol(TBitmap& bitmap, TColor color);

/// Palette index of a pixel of a pf4bit or pf8bit bitmap; 0 for other formats and for an empty
/// bitmap. An odd pixel of a pf4bit bitmap reads as its even neighbor.
RASTERKIT_EXPORT uint8_t GetPalColor(int32_t x, int32_t y, const TBitmap& bitmap);

/// Writes the palette index of a pixel of a pf4bit or pf8bit bitmap, which is modified then; other
/// formats stay unchanged.
///
/// On pf4bit, writing an even pixel also gives its odd neighbor the old even value, and writing an
/// odd pixel leaves the even one as it is; an index above 15 is not masked and spills into the even
/// pixel.
RASTERKIT_EXPORT void SetPalColor(int32_t x, int32_t y, TBitmap& bitmap, uint8_t index);

}  // namespace rasterkit
