#pragma once

#include <cstdint>

#include <rasterkit/raster/pixel_format.h>
#include <rasterkit/runtime/export.h>

/// What counts as transparent in a bitmap, and how that is set and undone. White and the color of
/// the bottom-left pixel, which is a bitmap's automatic transparent color, play that part.
///
/// Everything runs on the thread that owns the bitmap and changes it in place; nothing fails. Gray
/// is `GrayValue`, of a palette entry that of its color; above means greater, below means less. A
/// bitmap that may be absent (null) is left alone, as is an empty one. Of palettes only those of
/// exactly 16 or 256 entries are handled, and they say how rows are read, whatever the pixel
/// format: with 256 entries a byte is a pixel, with 16 a byte holds two, as far as the row goes.
///
/// Where a byte holds two pixels the high one speaks for both, as everywhere in this library: a
/// byte that is looked at ends with two equal pixels. A byte of two zeros is never changed.
namespace rasterkit {

class TBitmap;

/// Makes every pixel whose gray is above `threshold` white; 255 changes nothing.
///
/// Without a palette this is `SetColorAbGray` with opaque white. With one the pixels get the index
/// of white, the highest if there are several; a palette without white (255, 255, 255) first gets
/// it in place of its brightest entry (the greatest sum of channels, the highest index among
/// equals). Pixels of index 0 never change.
RASTERKIT_EXPORT void SetToTransparent(TBitmap* bitmap, uint8_t threshold);

/// Gives pixels whose gray is above `threshold` a color: of pf24bit bitmaps, of pf32bit bitmaps
/// with `alpha`, of pf16bit bitmaps as a 5-6-5 word. Other formats stay as they are.
RASTERKIT_EXPORT void SetColorAbGray(TBitmap* bitmap, uint8_t threshold, uint8_t red, uint8_t green,
                                     uint8_t blue, uint8_t alpha);

/// Gives pixels whose gray is below `threshold` a color: of pf24bit bitmaps, and of pf32bit
/// bitmaps with `alpha`. Other formats, pf16bit among them, stay as they are.
RASTERKIT_EXPORT void SetColorBisGray(TBitmap* bitmap, uint8_t threshold, uint8_t red,
                                      uint8_t green, uint8_t blue, uint8_t alpha);

/// Makes white the transparent color that an export to PDF will see: the bottom-left pixel
/// becomes white.
///
/// Of pf16bit, pf24bit and pf32bit bitmaps (which keep their alpha) only that pixel changes. In a
/// palette white becomes the last entry, by changing places with it, in the pixels too; the highest
/// white counts if there are several. A palette without white stays as it is, and the bottom-left
/// pixel gets its last entry.
RASTERKIT_EXPORT void CheckTransColForPDF(TBitmap* bitmap);

/// Replaces the automatic transparent color of a pf24bit bitmap: every pixel of the color that
/// the bottom-left one has becomes `color`, that pixel included. A system color counts as black.
/// Bitmaps of other formats stay as they are.
RASTERKIT_EXPORT void SetTransColor(TBitmap& bitmap, TColor color);

/// Lets a transparent pf32bit bitmap show paper where it shows nothing: pixels of alpha 0 become
/// opaque white, all others stay as they are, and the bitmap is no longer `Transparent`. Any other
/// bitmap stays as it is, its `Transparent` included.
RASTERKIT_EXPORT void ResetTransparent(TBitmap& bitmap);

}  // namespace rasterkit
