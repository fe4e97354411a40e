#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/raster/palette.h>
#include <rasterkit/raster/pixel_format.h>

/// Conversions of rows from any pixel format to 24 and 32 bits, and from 32 bits to the others.
/// Other pairs of formats go through a row of 32-bit pixels.
namespace rasterkit {

/// Palette entries as 32-bit pixels with alpha 255; indexes beyond the palette are black.
using PixelTable = std::array<RGBArec, 256>;
PixelTable MakePixelTable(const HPALETTE& palette);

/// Unpacks a 1-, 4- or 8-bit row into one byte per index.
void UnpackIndexes(const uint8_t* row, TPixelFormat format, int width, uint8_t* indexes);
/// Packs one byte per index into a 1-, 4- or 8-bit row. The unused bits of the last byte become
/// zero. Only the low bits of an index count.
void PackIndexes(const uint8_t* indexes, TPixelFormat format, int width, uint8_t* row);

/// Converts a row of any format to 32-bit pixels. Alpha becomes 255; a 32-bit row keeps its own.
/// `table` is used for indexed formats only.
void RowTo32(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBArec* pixels);

/// Converts 32-bit pixels to a row of 15, 16, 24 or 32 bits.
void RowFrom32(const RGBArec* pixels, TPixelFormat format, int width, uint8_t* row);

/// Converts a row of any format to 24-bit pixels.
void RowTo24(const uint8_t* row, TPixelFormat format, int width, const PixelTable& table,
             RGBrec* pixels);

}  // namespace rasterkit
