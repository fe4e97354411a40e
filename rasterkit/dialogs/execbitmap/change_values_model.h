#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include <rasterkit/dialogs/execbitmap/change_bitmap.h>
#include <rasterkit/dialogs/execbitmap/preview_position.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>

namespace rasterkit {

/// The numbers that the dialog sets. Each has a track bar and a spin edit, which always show the
/// same.
enum class ValueControl { lightness, contrast, sharpen, red, green, blue, grayValue };
inline constexpr size_t kValueControls = 7;

struct ValueRange {
  int least = 0, greatest = 0;
  friend bool operator==(const ValueRange&, const ValueRange&) = default;
};

/// Texts below the track bar of the grey value; an empty middle one is not shown.
struct ScaleTexts {
  std::string LabVon = "-100", LabMitte = "0", LabBis = "100";
};

/// All that the change-values dialog knows and does, without a window. The picture is only read,
/// and must outlive the model.
class ChangeValuesModel {
 public:
  explicit ChangeValuesModel(const TBitmap& original) : original_(original) {}

  /// Called when numbers are other ones, while the model is busy: what a form hands back then is
  /// ignored.
  std::function<void()> OnValues;
  /// Called when the changed preview and the swatch must be painted.
  std::function<void()> OnRepaint;

  /// Takes the starting values and fills every task slot with brightness, so that until `Reset`
  /// no other task finds one. Colours are taken whatever the range of their track bars is by now.
  void Load(const TChgBmpValuesRec& values);
  /// Writes the values back, all but the grey value.
  void Store(TChgBmpValuesRec& values) const;

  void SetOperation(int32_t operation);
  int32_t Operation() const { return operation_; }
  /// The range of the three colours; any but 0 to 255 hides the swatch.
  void SetTBcolorMinMax(int least, int greatest);
  /// Makes the track bar of the grey value one of colours, at `value`.
  void SetTrackBarToFarbe(int value);

  /// A track bar or a spin edit was moved. Does nothing while busy, and where the number is there
  /// already.
  void Change(ValueControl control, int value);
  /// Enters a task to be applied after those that are there; see AddTask.
  void AddTag(int32_t code) { AddTask(slots_, code); }
  /// Enters every task once, brightness first, then contrast, sharpening and colours.
  void EnterAllTasks();
  /// Sets every number to 0 and empties the task slots.
  void Reset();
  /// Has the changed preview computed anew; does nothing while busy.
  void ExecOperation();
  bool Busy() const { return busy_; }

  int Value(ValueControl control) const { return values_[Index(control)]; }
  ValueRange Range(ValueControl control) const { return ranges_[Index(control)]; }
  /// The task that the control enters; that of the grey value is none.
  static int32_t Tag(ValueControl control);
  const TaskSlots& Slots() const { return slots_; }

  std::string Caption() const;
  const ScaleTexts& TextsOfGrayValue() const { return scaleTexts_; }
  /// The colours and the options.
  bool ShowsEditingPanel() const { return operation_ == kOperationValues; }
  bool ShowsGrayValue() const { return operation_ == kOperationBlackAndWhite; }
  bool ShowsSwatch() const { return showsSwatch_; }
  /// The colour 0x00BBGGRR made of the three numbers, each cut to 0 to 255.
  TColor SwatchColor() const;

  /// The previews have a new size, in pixels.
  void InitBmpPos(int boxWidth, int boxHeight);
  PreviewPosition& Position() { return position_; }

  /// What is seen of the original and of the changed picture, on a ground of a colour.
  TBitmap OriginalPreview(TColor ground) const;
  TBitmap ChangedPreview(TColor ground) const;
  /// Changes a bitmap that is (a copy of) the original as a whole; a step that fails leaves it as
  /// it was.
  void ApplyTo(TBitmap& bitmap) const;

 private:
  static size_t Index(ValueControl control) { return static_cast<size_t>(control); }

  ValueChange CurrentChange() const;
  void SetRange(ValueControl control, ValueRange range);
  void Notify(const std::function<void()>& listener) const;
  void ShowValues();

  const TBitmap& original_;
  int32_t operation_ = kOperationValues;
  bool busy_ = false;
  TaskSlots slots_{};
  std::array<int, kValueControls> values_{};
  std::array<ValueRange, kValueControls> ranges_{
      {{-100, 100}, {-100, 100}, {-100, 100}, {0, 255}, {0, 255}, {0, 255}, {-100, 100}}};
  bool showsSwatch_ = true;
  ScaleTexts scaleTexts_;
  PreviewPosition position_;
};

}  // namespace rasterkit
