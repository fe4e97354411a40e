#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// The values of the change-values dialog, in percent from -100 to 100.
struct TChgBmpValuesRec {
  int32_t Red = 0;
  int32_t Green = 0;
  int32_t Blue = 0;
  int32_t Sharpen = 0;
  int32_t Contrast = 0;
  int32_t Brightness = 0;
  /// Neither read nor written by `ChangeBitmap`.
  int32_t GrayValue = 0;
};

/// Lets the user change a bitmap's brightness, contrast, sharpness and colors (`operation` 0) or
/// choose the threshold of a black-and-white conversion (5), with the original and the changed
/// picture side by side. Any other operation shows the pictures and changes nothing.
///
/// The dialog starts with `values`, clamped to the range. Until the user presses refresh, operation
/// 0 applies the brightness four times in a row, and contrast, sharpness and colors have no effect;
/// afterwards the tasks are applied in the order in which they were changed. Operation 5 starts
/// with the threshold 125.
///
/// Returns true if the user pressed OK, or at once if `showDialog` is false: the bitmap is changed
/// then and `values` has the values of the dialog. Otherwise, and if `bitmap` is null, bitmap and
/// values do not change. Throws LimitError, with both unchanged, if the changed picture exceeds the
/// memory budget. Requires no application object without a dialog; with one it runs on the thread
/// that owns that object.
RASTERKIT_EXPORT bool ChangeBitmap(int32_t operation, TBitmap* bitmap, bool showDialog,
                                   TChgBmpValuesRec& values);

}  // namespace rasterkit
