#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

/// Operations on whole bitmaps: compose, mirror, resize, compare, make icons.
///
/// Everything runs on the calling thread. Functions with a number of threads return when all
/// threads have ended; as AssignPartBitmap, they throw DivisionByZeroError if there are too few
/// rows for the threads. A bitmap passed by pointer may be null: then the call is a no-op. Bitmaps
/// of zero size and unsupported formats stay as they are, without a message.
namespace rasterkit {

class TBitmap;
class TGraphic;
class TIcon;

/// Draws the bitmap into the canvas, stretched into `rect` (right and bottom are exclusive), with
/// constant opacity `alpha`, and a pf32bit bitmap also with the alpha of its pixels.
RASTERKIT_EXPORT void DrawBlendedBitmap(TBitmap* bitmap, TCanvas& canvas, const TRect& rect,
                                        uint8_t alpha);

/// Draws the source, stretched, over the whole target.
///
/// A pf1bit source with alpha 255, and only 255, counts as a drawing on white paper. Onto pf32bit
/// its white pixels are skipped; onto other formats AssignPartBitmap overwrites pixel by pixel,
/// from (0, 0) without stretching, all columns but not the last row. Everything else is blended
/// with constant opacity `alpha`, and a pf32bit source also with the alpha of its pixels.
RASTERKIT_EXPORT void CombineBitmapsTransparent(TBitmap* target, TBitmap* source, uint8_t alpha,
                                                int32_t ThreadsCount, TProgressEvent AProgress);

/// Draws a geo-referenced background over a target that shows the same area: AssignPartBitmap in
/// mode pmTransparent, from (0, 0) without stretching, all columns but not the last row. For
/// `percent` and `useGray` see that mode.
RASTERKIT_EXPORT void CombineGeoResTrans(TBitmap* target, TBitmap* source, int32_t percent,
                                         bool useGray, int32_t ThreadsCount,
                                         TProgressEvent AProgress);

/// Does the same as CombineGeoResTrans in mode pmShadow.
RASTERKIT_EXPORT void CombineGeoResFix(TBitmap* target, TBitmap* source, int32_t percent,
                                       bool useGray, int32_t ThreadsCount,
                                       TProgressEvent AProgress);

/// Makes the transparent pixels of a pf32bit bitmap opaque and all others transparent: alpha 0
/// becomes 255, any other alpha 0. The colors stay. No-op for other formats.
RASTERKIT_EXPORT void SwapAlpha(TBitmap* bitmap);

/// Makes a pf24bit copy of the graphic with the watermark embossed into it, stretched over the
/// whole picture (nearest pixel toward the top left).
///
/// The watermark itself becomes pf8bit and stays so. The red of a pixel's palette entry is its
/// strength: 250 and more leave the picture as it is; below that dark pixels (gray up to 127)
/// become lighter and light ones darker, the more the darker the watermark. A watermark of zero
/// size has no effect.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> WaterMarkedBitmap(const TGraphic& graphic,
                                                            TBitmap& watermark);

namespace detail {

/// Presses a pf8bit watermark, which is stretched over a picture of `height` rows, into some of its
/// rows from `top` on; these are pf24bit.
void PressWatermark(const TBitmap& watermark, int top, int height, TBitmap& rows);

}  // namespace detail

/// Makes an icon of the bitmap, or of its left half (width div 2, the picture of a button strip).
/// Pixels of the color of the top-left pixel become transparent, all others opaque. A picture of
/// zero size leaves the icon as it was, and so does an error, which passes to the caller.
RASTERKIT_EXPORT void CopyBitmapToIcon(TBitmap* bitmap, TIcon& icon, bool leftHalfOnly);

/// Mirrors left and right (`horizontal`) or top and bottom, in place, one pixel short: the last
/// column and the last row stay as they were, and the rest is mirrored within itself. For a
/// complete mirror use Reorient (orient.h).
RASTERKIT_EXPORT void SwapBitmap(bool horizontal, TBitmap* bitmap);

/// Replaces the bitmap by one of the new size in pixels, stretched: pf24bit and pf32bit results by
/// area average when shrinking and bilinear when growing (32-bit colors weighted by their alpha),
/// others by the nearest pixel.
///
/// The result has the old format and palette if `keepFormat` is set, else it is pf32bit; the alpha
/// mark stays if both have 32 bits. Everything else is as in a new bitmap: not `Transparent`,
/// transparent mode automatic, no resolution, no profile. If the old bitmap is `Transparent`
/// without an alpha channel, pixels of its transparent color become white (as far as the palette
/// has it) and the others are the nearest pixels: clear `Transparent` first to resize it as a plain
/// picture. An empty bitmap becomes white area.
///
/// Throws RangeError for a negative size and LimitError if there is not enough memory; the old
/// bitmap stays then.
RASTERKIT_EXPORT void ResizeBitmap(std::unique_ptr<TBitmap>& bitmap, int32_t newWidth,
                                   int32_t newHeight, bool keepFormat);

/// Tells whether both bitmaps would be saved to streams as the same bytes. Compares size, stored
/// format, palette, resolution in pixels per meter and every stored pixel, also invisible ones.
/// Ignores the color profile and undefined alpha bytes.
RASTERKIT_EXPORT bool BitmapsAreSame(const TBitmap& a, const TBitmap& b);

}  // namespace rasterkit
