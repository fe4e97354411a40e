#pragma once

#include <cstdint>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

/// Copying a rectangle of one bitmap into a rectangle of another, nearest pixel, in bands of rows
/// on `ThreadsCount` workers, while the calling thread dispatches its queue.
///
/// A rectangle spans `Right - Left` by `Bottom - Top` pixels for the scale, and its column `Right`
/// is written too; what lies outside the target is left out, as are source pixels that do not
/// exist. Row y shows source row Round((y - Top) * scale) + source Top, columns likewise, halves to
/// even. Bands are not cut at the bottom of the rectangle, so some numbers of threads (6 for 9
/// rows) write a row more.
///
/// Which formats go together (see TManageThreads::InitByteBits): no 15- or 16-bit format, and
/// nothing into an indexed target that is wider than its own pixels; such pairs change nothing, nor
/// do null, empty bitmaps and rectangles without area. Too few rows for the threads throw
/// DivisionByZeroError, as in TManageThreads. The callback is used above 1000 rows; it is also
/// called at the end of each worker, on that worker's thread.
///
/// Some results depend on the number of threads: those of 1- and 4-bit bitmaps (see TPixelThread)
/// and those that write into the source.
namespace rasterkit {

/// Copies every source pixel that is not white: the palette's first or last pure white entry in a
/// pf4bit source, a set bit in a pf1bit one, else a color with all channels above 250.
///
/// - Same formats and pmOverwrite (up to 8 bits every mode): the pixel is copied, alpha included;
///   8-bit indexes are mapped to the nearest palette entry; a pf1bit pixel clears the target's, and
///   pf4bit rows are treated by the same rule, bit by bit.
/// - Otherwise an indexed target gets its black, a true-color target black from a pf1bit source
///   and a mix of both colors from all others; alpha stays.
/// - pmTransparent: `Prozent` percent of the target (or of its gray value, with `UseGray`) plus the
///   rest of the source. Outside 0 to 100 the sums keep their low byte.
/// - pmShadow: the target, brightened by `Prozent` percent, shades the source channel by channel
///   (with `UseGray`: by its gray value).
/// - pmOverwrite between pf24bit and pf32bit copies the wrong way: the target's color into the
///   source, and the target stays.
///
/// The rows worked on are those from 0 to the height of `TarRect`, wherever its top is: rows above
/// it show source rows above `SrcRect` where there are any, and the last ones are not reached. The
/// last argument is not used.
RASTERKIT_EXPORT void AssignPartBitmap(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect,
                                       const TRect& SrcRect, int32_t ThreadsCount,
                                       TProgressEvent AProgress, TPixelMode PixMode,
                                       int32_t Prozent, bool UseGray, bool);

/// Copies source pixels only to where the target shows nothing.
///
/// That is: pixels of exactly the transparent color when the target is `Transparent` and
/// `TransLimit` is 255, else pixels with all channels above 250 (`TransLimit` does nothing else);
/// set bits of a pf1bit target; in a pf4bit target pairs of pixels of which the first has index 0.
/// Same formats are copied (8-bit: mapped to the nearest entry; pf1bit: clear bits only; pf4bit:
/// the first of the two source pixels twice). Otherwise an 8-bit target gets its black, pf24bit and
/// pf32bit copy the wrong way (see AssignPartBitmap), and all other targets stay.
RASTERKIT_EXPORT void AssignInWhite(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect,
                                    const TRect& SrcRect, uint8_t TransLimit, int32_t ThreadsCount,
                                    TProgressEvent AProgress);

}  // namespace rasterkit
