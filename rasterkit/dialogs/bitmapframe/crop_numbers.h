#pragma once

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>

namespace rasterkit {

/// The cut as people type it, in whole bitmap pixels.
struct CropNumbers {
  int left = 0, top = 0, width = 0, height = 0;

  TRect Rect() const { return {left, top, left + width, top + height}; }
  friend bool operator==(const CropNumbers&, const CropNumbers&) = default;
};

/// Returns the part of the cut inside the bitmap; the whole bitmap if there is no cut.
CropNumbers CropNumbersOf(const BmpCutModel& model);

/// Returns the nearest rectangle of at least one pixel inside the bitmap: left and top stay if
/// possible, the size shrinks. Empty if the bitmap has no pixels.
CropNumbers InsideBitmap(const CropNumbers& wanted, const TRect& bitmapRect);

}  // namespace rasterkit
