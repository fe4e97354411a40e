#pragma once

#include <cstdint>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/export.h>

/// Copying a rectangle of one bitmap into a rectangle of another, nearest pixel, in bands of rows
/// on `ThreadsCount` workers, while the calling thread dispatches its queue.
///
/// For the scale a rectangle has `Right - Left` by `Bottom - Top` pixels, but its column `Right` is
/// written too. Pixels outside the target or the source are skipped. Row y shows source row
/// Round((y - Top) * scale) + source Top, columns likewise, halves to even. Bands are not cut at
/// the bottom of the rectangle, so some numbers of threads (6 for 9 rows) write a row more.
///
/// Unsupported are 15- and 16-bit formats, and indexed targets with wider source pixels (see
/// TManageThreads::InitByteBits). Such pairs change nothing, nor do null, empty bitmaps and
/// rectangles without area. Throws DivisionByZeroError, as TManageThreads does, if there are too
/// few rows for the threads. The callback is used above 1000 rows; it is also called at the end of
/// each worker, on that worker's thread.
///
/// Some results depend on the number of threads: those of 1- and 4-bit bitmaps (see TPixelThread)
/// and those that write into the source.
namespace rasterkit {

/// Copies every source pixel that is not white: the palette's first or last pure white entry in a
/// pf4bit source, a set bit in a pf1bit one, else a color with all channels above 250.
///
/// - Same formats and pmOverwrite (up to 8 bits every mode): the pixel is copied, alpha included.
///   8-bit indexes are mapped to the nearest palette entry. A pf1bit pixel clears the target's;
///   pf4bit rows are processed by the same rule, bit by bit.
/// - Otherwise an indexed target gets its black. A true-color target gets black from a pf1bit
/// source
///   and a mix of both colors from all others; alpha stays.
/// - pmTransparent: `Prozent` percent of the target (or of its gray value, with `UseGray`) plus the
///   rest of the source. Outside 0 to 100 the sums keep their low byte.
/// - pmShadow: the target, brightened by `Prozent` percent, shades the source channel by channel
///   (with `UseGray`: by its gray value).
/// - pmOverwrite between pf24bit and pf32bit copies in the opposite direction: the target's color
/// into
///   the source; the target stays.
///
/// The rows from 0 to the height of `TarRect` are processed, regardless of its top: rows above it
/// show source rows above `SrcRect` if there are any, and the last rows are not reached. The last
/// argument is not used.
RASTERKIT_EXPORT void AssignPartBitmap(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect,
                                       const TRect& SrcRect, int32_t ThreadsCount,
                                       TProgressEvent AProgress, TPixelMode PixMode,
                                       int32_t Prozent, bool UseGray, bool);

/// Copies source pixels only onto target pixels that count as empty: pixels of exactly the
/// transparent color if the target is `Transparent` and `TransLimit` is 255, else pixels with all
/// channels above 250 (`TransLimit` has no other effect); set bits of a pf1bit target; in a pf4bit
/// target pairs of pixels of which the first has index 0.
///
/// Same formats are copied (8-bit: mapped to the nearest entry; pf1bit: clear bits only; pf4bit:
/// the first of the two source pixels twice). Otherwise an 8-bit target gets its black, pf24bit and
/// pf32bit copy in the opposite direction (see AssignPartBitmap), and all other targets stay.
RASTERKIT_EXPORT void AssignInWhite(TBitmap* TarBmp, TBitmap* SrcBmp, const TRect& TarRect,
                                    const TRect& SrcRect, uint8_t TransLimit, int32_t ThreadsCount,
                                    TProgressEvent AProgress);

}  // namespace rasterkit
