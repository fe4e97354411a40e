#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

/// Conversion of bitmaps to gray, or to black and white. Call these functions on the thread that
/// owns the bitmap; they change it in place. Transparency, resolution and profile stay. No-op for
/// null. Throws LimitError, with the bitmap unchanged, if the new rows exceed the memory budget.
namespace rasterkit {

class TBitmap;

/// Turns a bitmap of any format into a pf1bit one of two colors: pixels whose gray value is below
/// `threshold` get the first, all others the second. With 0 or less every pixel gets the second,
/// with more than 255 the first.
///
/// The palette has these two entries; of each channel the low byte counts. The unused bits in the
/// last byte of a row are ones.
RASTERKIT_EXPORT void ColorBmpTo1Bit(TBitmap* bitmap, int32_t threshold, int32_t red0,
                                     int32_t green0, int32_t blue0, int32_t red1, int32_t green1,
                                     int32_t blue1);

/// Calls `ColorBmpTo1Bit` with black (below the threshold) and white.
RASTERKIT_EXPORT void ColorBmpToSW(TBitmap* bitmap, int32_t threshold);

/// Makes a bitmap gray.
///
/// A pf24bit bitmap keeps its format if `keepTrueColor` is set: each pixel's channels become its
/// gray value. A palette of 16 or 256 entries is made gray, while every pixel keeps its index (see
/// `ChangePalColors` for what is kept of a row if palette and format do not match). Every other
/// bitmap becomes a pf8bit one with the 256 grays as its palette, each pixel the index of its gray
/// value; alpha is dropped.
RASTERKIT_EXPORT void BitmapToGray(TBitmap* bitmap, bool keepTrueColor);

}  // namespace rasterkit
