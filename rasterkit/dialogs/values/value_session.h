#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/bands/color_change.h>
#include <rasterkit/dialogs/execbitmap/change_values_model.h>

namespace rasterkit {

/// What the user has chosen: the numbers, and whether the threshold is found by itself.
struct ChosenValues {
  ControlValues numbers{};
  bool isAutomatic = false;
  friend bool operator==(const ChosenValues&, const ChosenValues&) = default;
};

/// The windows of ChooseValues and ChooseThreshold without a window: the numbers, undo and redo,
/// the values of the last time, and the step that is the answer. The picture is only read and must
/// outlive the session.
class ValueSession {
 public:
  ValueSession(const TBitmap& picture, const AdjustColors& start);
  ValueSession(const TBitmap& picture, const MakeMono& start);
  ValueSession(const ValueSession&) = delete;
  ValueSession& operator=(const ValueSession&) = delete;

  /// Called after anything changed that a window shows.
  std::function<void()> OnChange;

  // Facts.

  bool IsThreshold() const { return model_.ShowsGrayValue(); }
  const ChangeValuesModel& Values() const { return model_; }
  /// The controls that the window shows, from top to bottom.
  std::vector<ValueControl> Controls() const;
  int Number(ValueControl control) const { return model_.Value(control); }
  bool IsAutomatic() const { return chosen_.isAutomatic; }
  /// Otsu's threshold of the picture; nothing until it was found.
  std::optional<int> FoundThreshold() const { return found_; }
  bool CanUndo() const { return place_ > 0; }
  bool CanRedo() const { return place_ + 1 < past_.size(); }
  /// Whether a control has another value than a reset would give it.
  bool CanReset(ValueControl control) const;
  bool CanResetAll() const;
  bool CanUseLast() const;
  /// Whether the step would change anything.
  bool CanConfirm() const;
  std::string Title() const;

  AdjustColors Adjustment() const;
  MakeMono Mono() const;

  // Events.

  /// A control was moved. Changes of one control in a row are one step of undo until `EndChange`.
  void Change(ValueControl control, int value);
  void EndChange() { changing_.reset(); }
  void Reset(ValueControl control);
  void ResetAll();
  void Undo();
  void Redo();
  void SetAutomatic(bool isAutomatic);
  /// Otsu's threshold was found, or estimated from a part of the picture. It is shown while the
  /// threshold is automatic.
  void SetFoundThreshold(int threshold);
  void UseLast();
  /// Writes the values to the host's settings, for the next time.
  void Remember() const;

 private:
  void Begin();
  ChosenValues Unchanged() const;
  ChosenValues Clamped(ChosenValues values) const;
  void Set(const ChosenValues& values, std::optional<ValueControl> changing);
  void Show();

  ChangeValuesModel model_;
  TColor dark_ = clBlack, light_ = clWhite;
  bool isTwoTone_ = false;
  ChosenValues chosen_;
  std::optional<int> found_;
  std::optional<ChosenValues> last_;
  /// Every state since the start; the current one is at `place_`.
  std::vector<ChosenValues> past_;
  size_t place_ = 0;
  std::optional<ValueControl> changing_;
};

/// The values as a text for settings, "10 -5 0 0 0 0 125 0", and back; nothing for another text.
std::string TextOfValues(const ChosenValues& values);
std::optional<ChosenValues> ValuesOfText(const std::string& text);

}  // namespace rasterkit
