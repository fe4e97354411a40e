#pragma once

#include <vector>

#include <rasterkit/dialogs/bitmapframe/rd_rect.h>

namespace rasterkit {

/// Lines inside the rectangle.
enum class CropGuide { none, thirds, center };

/// A straight line between two points.
struct GuideLine {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

/// The lines of a guide in a rectangle, the upright ones first.
std::vector<GuideLine> GuideLines(CropGuide guide, const RDRect& rect);

}  // namespace rasterkit
