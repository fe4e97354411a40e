#pragma once

#include <cstdint>
#include <functional>

namespace rasterkit {

/// The state and the rules of the change-size dialog, without a window.
class ChangeSizeModel {
 public:
  enum class Field { width, height };
  /// The largest number that a field accepts.
  static constexpr double kGreatest = INT32_MAX;

  /// The starting sizes define the proportion while the dialog is open.
  ChangeSizeModel(int32_t startWidth, int32_t startHeight);

  /// Called if a field must show another number than the user entered.
  std::function<void(Field field, double value)> OnField;

  /// The user (or the form, by setting a field) set a field to `value`. The other field follows
  /// while the box is checked, always by the starting sizes, so that rounding errors do not add up.
  /// Values set by `OnField` are only stored.
  void FlEdChange(Field sender, double value);

  double Width() const { return width_; }
  double Height() const { return height_; }
  bool Proportional() const { return isProportional_; }
  /// Checking the box changes no number until one is edited again.
  void SetProportional(bool checked) { isProportional_ = checked; }

  /// Returns the result of the dialog, rounded, halves to even.
  int32_t RoundedWidth() const;
  int32_t RoundedHeight() const;

 private:
  double& Value(Field field) { return field == Field::width ? width_ : height_; }

  int32_t startWidth_, startHeight_;
  double width_, height_;
  bool isProportional_ = true;
  bool isFollowing_ = false;
};

}  // namespace rasterkit
