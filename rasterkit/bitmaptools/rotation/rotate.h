#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Turns a bitmap counter-clockwise by any angle about its center, nearest pixel, and replaces it
/// by the turned one, whose size is the bounding box.
///
/// - `Angle` in degrees. It is brought to -0.01 to 360.01 by whole turns; within 0.01 of none or a
///   whole one nothing is done. Infinite angles and NaN give false.
/// - `Bmp` of 1 to 32 bits. A 24- or 32-bit bitmap and an angle that rounds to 90, 180 or 270 (89.5
///   and 90.5 do) is turned exactly, pixel by pixel, into a 24-bit bitmap; background and
///   transparency are then ignored, and the resolution goes with the sides. Other formats take
///   the general way at every angle, which shifts quarter turns by one pixel: at 90 degrees the
///   first row, at 270 the first column, at 180 both are background.
/// - `BkColor` fills the corners. With -1 it is near-white, (254, 255, 255), which is added to a
///   palette with room for it (a 1-bit bitmap becomes 4-bit first); a full palette gives its
///   largest color number below white. The result is then transparent in that color.
/// - `ThreadsCount` workers, clamped to 1 to 100; one means the calling thread, whose queue is kept
///   alive. Fewer rows than an eighth of the threads or so fail (see TManageThreads).
/// - `Bmp2` is accepted and not used.
///
/// True when `Bmp` holds the answer, turned or unchanged. False when it is null, its format has no
/// whole pixels, or the turn failed (mostly for lack of memory); this is then said by the message
/// "Bitmap to large to rotate.", and `Bmp` is as it was.
RASTERKIT_EXPORT bool RotateBitmap(float Angle, std::unique_ptr<TBitmap>& Bmp, int32_t BkColor,
                                   int32_t ThreadsCount, TBitmap* Bmp2);

namespace detail {

/// The angle after the whole turns are taken off: what adding 360 while it is below -0.01 and then
/// subtracting 360 while it is above 360.01 gives in single precision, without the loop. Finite
/// angles only.
float NormalizeAngle(float angle);

}  // namespace detail
}  // namespace rasterkit
