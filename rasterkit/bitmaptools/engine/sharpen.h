#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Sharpens (`percent` 1 to 100) or softens (-100 to -1) a bitmap in place; 0 changes nothing, and
/// larger numbers count as 100 and -100. Bitmaps of other formats become pf24bit first.
///
/// Each channel moves away from the mean of the 3 x 3 pixels around it by twice the percentage of
/// its distance, or toward it by the percentage. A pixel whose eight neighbors all differ from it
/// by less than 4 levels in every channel is left alone. Pixels beyond the edge count as the
/// nearest edge pixel. So a part of a picture with one more pixel on each side (if there is one)
/// gets the same result as the whole picture. Null and empty bitmaps stay as they are.
RASTERKIT_EXPORT void Sharpen(TBitmap* bitmap, int32_t percent);

namespace detail {

/// The share of kernels::SharpenRow24 for a percentage from -100 to 100.
int16_t SharpenShare(int32_t percent);

}  // namespace detail

}  // namespace rasterkit
