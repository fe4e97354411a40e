#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/preview_position.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>
#include <rasterkit/dialogs/execbitmap/value_rules.h>

namespace rasterkit {

/// The numbers of the dialog. Each has a track bar and a spin edit, which always show the same
/// value.
enum class ValueControl { lightness, contrast, sharpen, red, green, blue, grayValue };
inline constexpr size_t kValueControls = 7;

/// A number for each control.
using ControlValues = std::array<int, kValueControls>;

/// Texts below the track bar of the gray value; an empty middle text is not shown.
struct ScaleTexts {
  std::string LabVon = "-100", LabMitte = "0", LabBis = "100";
};

/// The state and the rules of the change-values dialog, without a window. The picture is only read
/// and must outlive the model, and so must the rules.
class ChangeValuesModel {
 public:
  explicit ChangeValuesModel(const TBitmap& original, const ValueRules& rules = kEntryValueRules)
      : original_(original), rules_(rules) {}

  /// Called if numbers changed, while the model is busy: values set by the form meanwhile are
  /// ignored.
  std::function<void()> OnValues;
  /// Called if the changed preview and the swatch must be painted.
  std::function<void()> OnRepaint;

  /// Takes the starting values and the tasks that the rules have then. Those of the entries fill
  /// every slot with brightness, so that until `Reset` there is no slot for another task. Colors
  /// are taken without regard to the current range of their track bars.
  void Load(const TChgBmpValuesRec& values);
  /// Writes the values back, except for the gray value.
  void Store(TChgBmpValuesRec& values) const;

  void SetOperation(int32_t operation);
  int32_t Operation() const { return operation_; }
  /// Sets the range of the three colors; any range except 0 to 255 hides the swatch.
  void SetTBcolorMinMax(int least, int greatest);
  /// Turns the track bar of the gray value into one of colors, at `value`.
  void SetTrackBarToFarbe(int value);

  /// A track bar or a spin edit was moved. No-op while busy, or if the number is the same.
  void Change(ValueControl control, int value);
  /// Adds a task after the existing ones; see AddTask.
  void AddTag(int32_t code) { AddTask(slots_, code); }
  /// Adds every task once: brightness, contrast, sharpening, colors.
  void EnterAllTasks();
  /// Sets every number to 0 and the gray value and the task slots to those of the rules.
  void Reset();
  /// Sets all numbers at once, each clamped to its range; the tasks stay.
  void SetValues(const ControlValues& values);
  const ControlValues& Values() const { return values_; }
  /// Sets the colors of black and white.
  void SetMonoColors(TColor dark, TColor light);
  /// Recomputes the changed preview; no-op while busy.
  void ExecOperation();
  bool Busy() const { return busy_; }

  int Value(ValueControl control) const { return values_[Index(control)]; }
  ValueRange Range(ValueControl control) const { return ranges_[Index(control)]; }
  /// Returns the task of the control; the gray value has none.
  static int32_t Tag(ValueControl control);
  const TaskSlots& Slots() const { return slots_; }

  std::string Caption() const;
  /// The word on the button that calls `Reset`.
  std::string TextOfReset() const;
  const ScaleTexts& TextsOfGrayValue() const { return scaleTexts_; }
  /// Whether the colors and the options are shown.
  bool ShowsEditingPanel() const { return operation_ == kOperationValues; }
  bool ShowsGrayValue() const { return operation_ == kOperationBlackAndWhite; }
  bool ShowsSwatch() const { return showsSwatch_; }
  /// Returns the color 0x00BBGGRR of the three numbers, each clamped to 0 to 255.
  TColor SwatchColor() const;

  /// The previews have a new size, in pixels.
  void InitBmpPos(int boxWidth, int boxHeight);
  PreviewPosition& Position() { return position_; }

  /// Returns the visible part of the original (or changed) picture on a background color.
  TBitmap OriginalPreview(TColor ground) const;
  TBitmap ChangedPreview(TColor ground) const;
  /// Returns a part of the picture as it would be drawn after the change.
  TBitmap ChangedPart(const TRect& part, TColor ground) const;
  /// The numbers and tasks in effect.
  ValueChange CurrentChange() const;
  const ValueRules& Rules() const { return rules_; }
  const TBitmap& Original() const { return original_; }
  /// Changes a whole bitmap, which is (a copy of) the original; a step that fails has no effect.
  void ApplyTo(TBitmap& bitmap) const;

 private:
  static size_t Index(ValueControl control) { return static_cast<size_t>(control); }

  void SetRange(ValueControl control, ValueRange range);
  void Notify(const std::function<void()>& listener) const;
  void ShowValues();

  const TBitmap& original_;
  const ValueRules& rules_;
  int32_t operation_ = kOperationValues;
  bool busy_ = false;
  TaskSlots slots_{};
  ControlValues values_{};
  std::array<ValueRange, kValueControls> ranges_{
      {{-100, 100}, {-100, 100}, {-100, 100}, {0, 255}, {0, 255}, {0, 255}, {-100, 100}}};
  bool showsSwatch_ = true;
  ScaleTexts scaleTexts_;
  TColor dark_ = clBlack, light_ = clWhite;
  PreviewPosition position_;
};

}  // namespace rasterkit
