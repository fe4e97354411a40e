#pragma once

#include "tests/reference/canvas_reference.h"
#include "tests/reference/halftone_reference.h"
#include "tests/reference/pixel_transfer_reference.h"

/// Composing and resizing of bitmaps, straight from the rules.
namespace rasterkit::reference {

inline PixelRect WholeOf(const TBitmap& bitmap) {
  return {0, 0, bitmap.Width(), bitmap.Height()};
}

inline Raster DrawBlendedBitmap(const TBitmap& target, const PixelRect& rect, const TBitmap& source,
                                uint8_t alpha) {
  const Manner manner{Way::blended, alpha, source.PixelFormat() == pf32bit};
  return DrawPart(target.Content(), rect, source.Content(), WholeOf(source), manner);
}

/// The pixel engine over the full rectangle, one short, of the target. `rows` that it divides among
/// the threads: one less than there are.
inline void TransferOver(TBitmap& target, TBitmap& source, TPixelMode mode, int percent,
                         bool useGray, int threads) {
  const TRect full{0, 0, target.Width() - 1, target.Height() - 1};
  if (full.Right < 1 || full.Bottom < 1 || source.Empty()) return;
  Transfer({target, source, full, full, ptAssignPart, mode, percent, useGray},
           BandsOf(threads, full.Bottom));
}

inline Raster CombineBitmapsTransparent(TBitmap& target, TBitmap& source, uint8_t alpha,
                                        int threads) {
  if (source.PixelFormat() != pf1bit || alpha != 255)
    return DrawBlendedBitmap(target, WholeOf(target), source, alpha);
  if (target.PixelFormat() == pf32bit) {
    Manner manner{Way::keyed};
    manner.key = 0x00FFFFFF;
    return DrawPart(target.Content(), WholeOf(target), source.Content(), WholeOf(source), manner);
  }
  TransferOver(target, source, pmOverwrite, 0, false, threads);
  return target.Content().Clone();
}

/// A picture of the new size. The palette stays with its indexes; 32-bit pictures keep their alpha,
/// by which their colors are weighted.
inline Raster ResizeBitmap(const TBitmap& bitmap, int width, int height, bool keepFormat) {
  const TPixelFormat format = keepFormat ? bitmap.PixelFormat() : pf32bit;
  Raster resized(format, width, height);
  if (keepFormat) resized.palette = bitmap.Palette();
  const PixelRect place{0, 0, width, height};
  if (format != pf24bit && format != pf32bit)
    return DrawPart(resized, place, bitmap.Content(), WholeOf(bitmap), {Way::copied});
  return DrawHalftone(resized, place, bitmap.Content(), bitmap.PixelFormat() == pf32bit,
                      {Way::copied});
}

}  // namespace rasterkit::reference
