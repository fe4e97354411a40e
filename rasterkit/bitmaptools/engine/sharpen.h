#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// Sharpens (`percent` 1 to 100) or softens (-100 to -1) a bitmap in place; 0 changes nothing, and
/// numbers beyond count as 100 and -100. Bitmaps of other formats become pf24bit first.
///
/// Each channel moves away from the mean of the 3 x 3 pixels around it by twice the percentage of
/// its distance, or toward it by the percentage. A pixel whose eight neighbors all differ from it
/// by less than 4 levels in every channel is left alone. Rows and columns beyond the edge count as
/// the edge. So a part of a picture that has one pixel more on each side (where there is one) gets
/// the same pixels as the whole. Null and empty bitmaps stay as they are.
RASTERKIT_EXPORT void Sharpen(TBitmap* bitmap, int32_t percent);

}  // namespace rasterkit
