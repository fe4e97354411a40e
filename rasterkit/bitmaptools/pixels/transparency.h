#pragma once

#include <cstdint>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// Setting and clearing of transparency. The transparent color is white or that of the bottom-left
/// pixel, which is a bitmap's automatic transparent color.
///
/// Call these functions on the thread that owns the bitmap; they change it in place and never fail.
/// Gray means `GrayValue`, for a palette entry that of its color; above means greater, below means
/// less. No-op for null and for an empty bitmap. Only palettes of exactly 16 or 256 entries are
/// supported, and they decide how rows are read, regardless of the pixel format: with 256 entries a
/// byte is a pixel, with 16 a byte holds two, up to the end of the row.
///
/// If a byte holds two pixels, the high one counts for both: every byte that is processed ends with
/// two equal pixels. A byte of two zeros is never changed.
namespace rasterkit {

class TBitmap;

/// Makes every pixel whose gray is above `threshold` white. No-op for 255.
///
/// Without a palette this is `SetColorAbGray` with opaque white. With a palette the pixels get the
/// index of white, the highest if there are several. If the palette has no white (255, 255, 255),
/// its brightest entry (the greatest sum of channels, the highest index among equals) becomes white
/// first. Pixels of index 0 never change.
RASTERKIT_EXPORT void SetToTransparent(TBitmap* bitmap, uint8_t threshold);

/// Sets the color of pixels whose gray is above `threshold`, in pf24bit, pf32bit (with `alpha`) and
/// pf16bit bitmaps (as a 5-6-5 word). No-op for other formats.
RASTERKIT_EXPORT void SetColorAbGray(TBitmap* bitmap, uint8_t threshold, uint8_t red, uint8_t green,
                                     uint8_t blue, uint8_t alpha);

/// Sets the color of pixels whose gray is below `threshold`, in pf24bit and pf32bit bitmaps (with
/// `alpha`). No-op for other formats, pf16bit included.
RASTERKIT_EXPORT void SetColorBisGray(TBitmap* bitmap, uint8_t threshold, uint8_t red,
                                      uint8_t green, uint8_t blue, uint8_t alpha);

/// Makes white the transparent color that an export to PDF will see: the bottom-left pixel
/// becomes white.
///
/// In pf16bit, pf24bit and pf32bit bitmaps (which keep their alpha) only that pixel changes. In a
/// palette white is exchanged with the last entry, in the pixels too; the highest white counts if
/// there are several. A palette without white stays as it is, and the bottom-left pixel gets its
/// last entry.
RASTERKIT_EXPORT void CheckTransColForPDF(TBitmap* bitmap);

/// Replaces the automatic transparent color of a pf24bit bitmap: every pixel of the color of the
/// bottom-left one becomes `color`. A system color counts as black. No-op for other formats.
RASTERKIT_EXPORT void SetTransColor(TBitmap& bitmap, TColor color);

/// Makes pixels of alpha 0 in a `Transparent` pf32bit bitmap opaque white and clears `Transparent`.
/// All other pixels stay. No-op for any other bitmap.
RASTERKIT_EXPORT void ResetTransparent(TBitmap& bitmap);

}  // namespace rasterkit
