#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

class TBitmap;

/// What the change-values dialog sets, in percent from -100 to 100.
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

/// Lets the user change a bitmap's brightness, contrast, sharpness and colours (`operation` 0) or
/// pick the threshold of a black-and-white conversion (5), with the original and the changed
/// picture side by side. Any other operation shows the pictures and changes nothing.
///
/// `values` are what the dialog starts with; those out of range count as the nearest that is in it.
/// Until the user presses refresh, operation 0 applies the brightness four times in a row, and
/// contrast, sharpness and colours change nothing; after it the tasks are applied in the order in
/// which they were touched. Operation 5 starts with the threshold 125.
///
/// True, with the bitmap changed and the values of the dialog in `values`, when the user pressed
/// OK, or at once where `showDialog` is false. Otherwise, and where `bitmap` is null, bitmap and
/// values stay as they were. Throws LimitError, with both as they were, when the changed picture
/// exceeds the memory budget. Without a dialog no application object is needed; with one it runs on
/// the thread that owns that object.
RASTERKIT_EXPORT bool ChangeBitmap(int32_t operation, TBitmap* bitmap, bool showDialog,
                                   TChgBmpValuesRec& values);

}  // namespace rasterkit
