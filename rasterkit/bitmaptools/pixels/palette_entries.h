#pragma once

#include <cstdint>

#include <rasterkit/raster/palette.h>

/// Internal functions on tables of palette entries. `count` is the number of valid entries; more
/// than 256 counts as 256.
namespace rasterkit::detail {

/// Makes a palette as `CreateColorPalette` does, but with exactly count + 1 entries, the last one
/// being the given color. Adds a background color to a palette that is not full, so `count` is
/// clamped to 0 to 255.
HPALETTE CreatePaletteWithColor(const TColorTable& entries, int32_t count, uint8_t red,
                                uint8_t green, uint8_t blue);

/// First entry that is (0, 0, 0); -1 if there is none.
int32_t FindBlackEntry(int32_t count, const TColorTable& entries);

/// First entry that is (255, 255, 255); -1 if there is none.
int32_t FindWhiteEntry(int32_t count, const TColorTable& entries);

/// Entry at the least distance, the lowest index among equals; -1 if none is closer than 255.
///
/// The distance is the greatest of |red - entry red|, |red - entry green| and |blue - entry blue|.
/// `green` is not used.
int32_t NearestPaletteEntry(int32_t count, const TColorTable& entries, uint8_t red, uint8_t green,
                            uint8_t blue);

}  // namespace rasterkit::detail
