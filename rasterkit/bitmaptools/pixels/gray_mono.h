#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

/// Bitmaps made gray, or black and white. Everything runs on the thread that owns the bitmap and
/// changes it in place; transparency, resolution and profile stay. A bitmap that is absent (null)
/// is left alone. Throws LimitError, with the bitmap unchanged, where the new rows exceed the
/// memory budget.
namespace rasterkit {

class TBitmap;

/// Turns a bitmap of any format into a pf1bit one of two colors: pixels whose gray value is below
/// `threshold` get the first, all others the second. At 0 and less every pixel gets the second,
/// above 255 the first.
///
/// The palette has these two entries; of each channel the low byte counts. The unused bits in the
/// last byte of a row are ones.
RASTERKIT_EXPORT void ColorBmpTo1Bit(TBitmap* bitmap, int32_t threshold, int32_t red0,
                                     int32_t green0, int32_t blue0, int32_t red1, int32_t green1,
                                     int32_t blue1);

/// `ColorBmpTo1Bit` in black (below the threshold) and white.
RASTERKIT_EXPORT void ColorBmpToSW(TBitmap* bitmap, int32_t threshold);

/// Makes a bitmap gray.
///
/// A pf24bit bitmap keeps its format if `keepTrueColor` is set: each pixel's channels become its
/// gray value. A palette of 16 or 256 entries is made gray, while every pixel keeps its index (see
/// `ChangePalColors` for what is kept of a row where palette and format disagree). Every other
/// bitmap becomes a pf8bit one with the 256 grays as its palette, each pixel the index of its gray
/// value; alpha is dropped.
RASTERKIT_EXPORT void BitmapToGray(TBitmap* bitmap, bool keepTrueColor);

}  // namespace rasterkit
