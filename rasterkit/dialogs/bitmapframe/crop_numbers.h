#pragma once

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>

namespace rasterkit {

/// The cut as people type it, in whole bitmap pixels.
struct CropNumbers {
  int left = 0, top = 0, width = 0, height = 0;

  TRect Rect() const { return {left, top, left + width, top + height}; }
  friend bool operator==(const CropNumbers&, const CropNumbers&) = default;
};

/// The part of the cut that lies in the bitmap; the whole bitmap where there is no cut.
CropNumbers CropNumbersOf(const BmpCutModel& model);

/// The nearest rectangle of at least one pixel that lies in the bitmap: left and top stay where
/// they can, the size gives way. Nothing of a bitmap without pixels.
CropNumbers InsideBitmap(const CropNumbers& wanted, const TRect& bitmapRect);

}  // namespace rasterkit
