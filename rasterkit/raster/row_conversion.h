#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>

/// Rows from any pixel format to the two true-color layouts, and from 32-bit rows to the others.
/// Conversions without a direct way go through one row of 32-bit pixels.
namespace rasterkit {

/// Palette entries as 32-bit pixels, alpha 255; indexes beyond the palette are black.
using PixelTable = std::array<RGBArec, 256>;
PixelTable MakePixelTable(const HPALETTE& palette);

/// One byte an index from a 1-, 4- or 8-bit row.
void UnpackIndexes(const uint8_t* row, TPixelFormat format, int width, uint8_t* indexes);
/// The reverse; bits beyond the last pixel of the last byte are zero. An index keeps its low bits
/// only.
void PackIndexes(const uint8_t* indexes, TPixelFormat format, int width, uint8_t* row);

/// A row of any format as 32-bit pixels; alpha is 255 but for a 32-bit source, which keeps its own.
/// `table` is looked at for indexed formats.
void RowTo32(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBArec* pixels);

/// 32-bit pixels as a row of 15, 16, 24 or 32 bits.
void RowFrom32(const RGBArec* pixels, TPixelFormat format, int width, uint8_t* row);

/// A row of any format as 24-bit pixels.
void RowTo24(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBrec* pixels);

}  // namespace rasterkit
