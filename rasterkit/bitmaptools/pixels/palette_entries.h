#pragma once

#include <cstdint>

#include <rasterkit/raster/palette.h>

/// Work on tables of palette entries that only this room and its neighbors need. `count` says how
/// many entries of a table are valid; more than 256 counts as 256.
namespace rasterkit::detail {

/// As `CreateColorPalette`, but with count + 1 entries and no rounding up; the last one is the
/// given color. Makes room for a background color in a palette that is not full, so `count` is
/// cut to 0 to 255.
HPALETTE CreatePaletteWithColor(const TColorTable& entries, int32_t count, uint8_t red,
                                uint8_t green, uint8_t blue);

/// The first entry that is (0, 0, 0); -1 when there is none.
int32_t FindBlackEntry(int32_t count, const TColorTable& entries);

/// The first entry that is (255, 255, 255); -1 when there is none.
int32_t FindWhiteEntry(int32_t count, const TColorTable& entries);

/// The entry at the least distance, the lowest index among equals; -1 when none is closer than 255.
///
/// The distance is the greatest of |red - entry red|, |red - entry green| and |blue - entry blue|.
/// `green` takes no part: established results depend on it.
int32_t NearestPaletteEntry(int32_t count, const TColorTable& entries, uint8_t red, uint8_t green,
                            uint8_t blue);

}  // namespace rasterkit::detail
