#pragma once

#include <string_view>

#include <rasterkit/dialogs/execbitmap/changed_part.h>
#include <rasterkit/dialogs/execbitmap/step_part.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

struct ValueRange {
  int least = 0, greatest = 0;
  friend bool operator==(const ValueRange&, const ValueRange&) = default;
};

/// What two windows for values do differently, as plain data: ChangeValuesModel reads these fields
/// and does not know which window it serves.
struct ValueRules {
  /// The tasks in effect after the starting values were loaded, and after a reset.
  TaskSlots loadedTasks{}, resetTasks{};
  /// The thresholds that can be chosen, and the threshold at the start.
  ValueRange thresholds{0, 255};
  int firstThreshold = 125;
  /// The gray value after a reset.
  int resetGrayValue = 0;
  /// The word on the button that resets.
  std::string_view resetText = rsRefresh;
  /// Computes the changed preview of a part of the picture on a background color.
  TBitmap (*drawPart)(const TBitmap& picture, const TRect& part, const ValueChange& change,
                      TColor ground) = DrawChangedPart;
};

/// `ChangeBitmap` and `AdjustBitmap`: brightness fills every slot at first; after a reset the tasks
/// that were changed are in effect, in the order of their changes; pixels change as by the exported
/// routines.
inline constexpr ValueRules kEntryValueRules{
    {kTaskBrightness, kTaskBrightness, kTaskBrightness, kTaskBrightness},
    {kTaskNone, kTaskNone, kTaskNone, kTaskNone},
    {0, 255},
    125,
    0,
    rsRefresh,
    DrawChangedPart};

/// `ChooseValues` and `ChooseThreshold`: all values act at once, each exactly once; pixels change
/// as by a step of a picture.
inline constexpr ValueRules kEditorValueRules{
    {kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors},
    {kTaskBrightness, kTaskContrast, kTaskSharpen, kTaskColors},
    {0, 256},
    125,
    125,
    rsReset,
    DrawStepPart};

}  // namespace rasterkit
