#pragma once

#include <optional>

#include <rasterkit/metadata/follow_pixels.h>

namespace rasterkit::detail {

/// An area of a picture in pixels; a point has no sides.
struct PictureArea {
  double centerX = 0, centerY = 0, width = 0, height = 0;
};

/// The place of an area in the new picture: the box around its mapped corners, cut off at the sides
/// of the picture. Nothing if it lies outside.
std::optional<PictureArea> MapArea(const PixelChange& change, const PictureArea& area);

/// How much larger the new picture shows lengths along its own x and y, and whether its x comes
/// from the old y.
struct AxisScale {
  double x = 1, y = 1;
  bool isTurned = false;
};
AxisScale ScaleOf(const PixelChange& change);

}  // namespace rasterkit::detail
