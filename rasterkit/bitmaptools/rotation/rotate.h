#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Rotates a bitmap counter-clockwise by any angle about its center, by nearest pixels, and
/// replaces it by the result, whose size is the bounding box.
///
/// - `Angle` is in degrees. Whole turns are added or subtracted to bring it to -0.01 to 360.01;
/// within
///   0.01 of 0 or 360 the call is a no-op. Non-finite angles give false.
/// - `Bmp` has 1 to 32 bits. If it has 24 or 32 bits and the angle rounds to 90, 180 or 270
/// (as 89.5
///   and 90.5 do), it is turned exactly into a 24-bit bitmap; background and transparency are then
///   ignored, and the resolutions of x and y are exchanged with the sides. Other formats use the
///   general method at every angle, which shifts quarter turns by one pixel: at 90 degrees the
///   first row, at 270 the first column, at 180 both are background.
/// - `BkColor` fills the corners. -1 means near-white, (254, 255, 255), which is added to a palette
/// that
///   is not full (a 1-bit bitmap becomes 4-bit first); a full palette uses its largest color number
///   below white. The result is then transparent in that color.
/// - `ThreadsCount` is the number of workers, clamped to 1 to 100; 1 means the calling thread,
/// whose
///   queue is dispatched. Fails if there are fewer rows than about an eighth of the threads (see
///   TManageThreads).
/// - `Bmp2` is not used.
///
/// Returns true if `Bmp` holds the result, turned or unchanged. Returns false if it is null, if its
/// format is unsupported, or if the rotation failed (mostly because it is out of memory); then the
/// message "Bitmap to large to rotate." is shown and `Bmp` is unchanged.
RASTERKIT_EXPORT bool RotateBitmap(float Angle, std::unique_ptr<TBitmap>& Bmp, int32_t BkColor,
                                   int32_t ThreadsCount, TBitmap* Bmp2);

/// Does the same for callers that report errors themselves: shows no message and throws LimitError
/// for a result beyond the memory budget, DivisionByZeroError for too many threads,
/// UnsupportedError for a null bitmap, an unsupported format or a non-finite angle, and
/// std::bad_alloc. `Bmp` is unchanged then.
RASTERKIT_EXPORT void RotateBitmapOrThrow(float Angle, std::unique_ptr<TBitmap>& Bmp,
                                          int32_t BkColor, int32_t ThreadsCount);

namespace detail {

/// Angle without whole turns: the result of adding 360 while it is below -0.01, then subtracting
/// 360 while it is above 360.01, in single precision, but without a loop. Requires a finite angle.
float NormalizeAngle(float angle);

}  // namespace detail
}  // namespace rasterkit
