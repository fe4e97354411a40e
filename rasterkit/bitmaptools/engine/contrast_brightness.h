#pragma once

#include <cstdint>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/runtime/export.h>

/// Contrast and brightness of a bitmap, in place.
///
/// pf1bit, pf4bit and pf8bit bitmaps are changed through their palette (see ChangePalColors). All
/// others become pf24bit and are changed pixel by pixel, by the calling thread (`ThreadsCount` 1)
/// or by that number of workers while the calling thread dispatches its queue.
///
/// Palettes and the single thread leave black (0, 0, 0) and white ((254 or 255, 255, 255), red
/// first) as they are; several threads change every pixel. Null and empty bitmaps stay as they are.
/// True-color bitmaps with too few rows for the threads, and thread counts below 1, become pf24bit
/// and throw DivisionByZeroError, as in TManageThreads.
///
/// Workers do not count rows. `AProgress`, which is used above 1000 rows and with several threads
/// only, therefore always gets 0 percent: on ticks of the timer, and at the end of each worker on
/// that worker's thread.
namespace rasterkit {

/// Moves each channel away from 128 by `Value` percent (toward it below 0, beyond it below -100),
/// rounded with halves to even and clamped to 0 to 255. Any value is allowed.
RASTERKIT_EXPORT void Kontrast(TBitmap* Bitmap, int32_t Value, int32_t ThreadsCount,
                               TProgressEvent AProgress);

/// Darkens (`Value` -100 to -1) by scaling each channel, or brightens (1 to 100) by scaling it and
/// adding a share of the distance of the color's gray value from white, clamped to 255, so that
/// dark colors gain more than light ones. No-op for other values.
RASTERKIT_EXPORT void Helligkeit(TBitmap* Bitmap, int32_t Value, int32_t ThreadsCount,
                                 TProgressEvent AProgress);

}  // namespace rasterkit
