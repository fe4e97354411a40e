#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

/// Whole bitmaps: laid over one another, mirrored, resampled, compared, made into icons.
///
/// Everything runs on the calling thread; what asks for a number of threads returns when they all
/// have ended (and throws DivisionByZeroError, as AssignPartBitmap does, for too few rows for so
/// many threads). A bitmap passed by pointer may be null: nothing happens then. Bitmaps of zero
/// size and formats that an operation does not know stay as they are. Nothing is reported.
namespace rasterkit {

class TBitmap;
class TGraphic;
class TIcon;

/// Draws the bitmap into the canvas, stretched into `rect` (right and bottom lie outside), with
/// constant opacity `alpha`; a pf32bit bitmap also with the opacity of each of its pixels.
RASTERKIT_EXPORT void DrawBlendedBitmap(TBitmap* bitmap, TCanvas& canvas, const TRect& rect,
                                        uint8_t alpha);

/// Lays the source, stretched, over the whole target.
///
/// A pf1bit source with alpha 255, and only 255, is a drawing on white paper: onto pf32bit its
/// white pixels are left out; onto other formats AssignPartBitmap overwrites pixel by pixel, from
/// (0, 0) without stretching, all columns but not the last row. Everything else is blended with
/// constant opacity `alpha`, a pf32bit source also with the opacity of its pixels.
RASTERKIT_EXPORT void CombineBitmapsTransparent(TBitmap* target, TBitmap* source, uint8_t alpha,
                                                int32_t ThreadsCount, TProgressEvent AProgress);

/// Lays a geo-referenced background over a target that shows the same area: AssignPartBitmap in
/// mode pmTransparent, from (0, 0) without stretching, all columns but not the last row. `percent`
/// and `useGray` are those of the mode.
RASTERKIT_EXPORT void CombineGeoResTrans(TBitmap* target, TBitmap* source, int32_t percent,
                                         bool useGray, int32_t ThreadsCount,
                                         TProgressEvent AProgress);

/// As CombineGeoResTrans, in mode pmShadow.
RASTERKIT_EXPORT void CombineGeoResFix(TBitmap* target, TBitmap* source, int32_t percent,
                                       bool useGray, int32_t ThreadsCount,
                                       TProgressEvent AProgress);

/// Makes the clear pixels of a pf32bit bitmap opaque and all others clear: alpha 0 becomes 255, any
/// other alpha 0. The colors stay. Other formats stay as they are.
RASTERKIT_EXPORT void SwapAlpha(TBitmap* bitmap);

/// A new pf24bit copy of the graphic with the watermark pressed into it, stretched over the whole
/// picture (nearest pixel toward the top left).
///
/// The watermark is converted to pf8bit for good; the red of a pixel's palette entry is its
/// strength: 250 and more leave the picture as it is, below that dark pixels (gray up to 127) are
/// pulled toward white and light ones darkened, the more the darker the watermark. A watermark of
/// zero size leaves no mark.
RASTERKIT_EXPORT std::unique_ptr<TBitmap> WaterMarkedBitmap(const TGraphic& graphic,
                                                            TBitmap& watermark);

/// Makes an icon of the bitmap, or of its left half (the picture of a button strip: width div 2).
/// The color of the top-left pixel is the key: pixels of that color become clear, all others
/// opaque. A picture of zero size leaves the icon as it was, and so does one of which no icon can
/// be made: then it throws what the making of the icon throws.
RASTERKIT_EXPORT void CopyBitmapToIcon(TBitmap* bitmap, TIcon& icon, bool leftHalfOnly);

/// Mirrors left and right (`horizontal`) or top and bottom, in place, one pixel short: the last
/// column and the last row stay as they were, and the rest is mirrored within itself. Callers rely
/// on this; a whole mirror is Reorient of orient.h.
RASTERKIT_EXPORT void SwapBitmap(bool horizontal, TBitmap* bitmap);

/// Replaces the bitmap by one of the new size in pixels, stretched: pf24bit and pf32bit results by
/// area average when shrinking and bilinear when growing (32-bit colors weighted by their alpha),
/// others by the nearest pixel.
///
/// The result has the old format, palette included, when `keepFormat` is set, else it is pf32bit;
/// alpha stays where both have 32 bits. Everything else is as in a new bitmap: not `Transparent`,
/// transparent mode automatic, no resolution, no profile. Where the old bitmap is `Transparent`
/// without an alpha channel, pixels of its transparent color become white (as far as the palette
/// has it) and the others are the nearest pixels: clear the mark first to resize it as a plain
/// picture. An empty bitmap becomes white area.
/// Throws RangeError for a negative size and LimitError without memory; the old bitmap is then
/// still there.
RASTERKIT_EXPORT void ResizeBitmap(std::unique_ptr<TBitmap>& bitmap, int32_t newWidth,
                                   int32_t newHeight, bool keepFormat);

/// True when both bitmaps would be saved to streams as the same bytes: size, stored format,
/// palette, resolution in pixels per meter and every stored pixel count, not only what is seen.
/// The color profile does not, nor an alpha byte that is ignored.
RASTERKIT_EXPORT bool BitmapsAreSame(const TBitmap& a, const TBitmap& b);

}  // namespace rasterkit
