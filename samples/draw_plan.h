#pragma once

#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::samples {

/// A floor plan in black and white: 1-bit, white paper.
TBitmap DrawPlan(int width, int height);

/// The same plan with colored rooms: 8-bit, a palette of 6 entries.
TBitmap DrawColoredPlan(int width, int height);

}  // namespace rasterkit::samples
