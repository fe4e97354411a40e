#pragma once

#include <cstdint>
#include <functional>

namespace rasterkit {

/// All that the change-size dialog knows and does, without a window.
class ChangeSizeModel {
 public:
  enum class Field { width, height };
  /// The greatest number a field takes.
  static constexpr double kGreatest = INT32_MAX;

  /// The sizes that the dialog starts with fix the proportion for as long as it is open.
  ChangeSizeModel(int32_t startWidth, int32_t startHeight);

  /// Called when a field must show another number than the user entered there.
  std::function<void(Field field, double value)> OnField;

  /// The user (or the form, setting a field) made a field hold `value`. The other one follows while
  /// the box is checked, always by the starting sizes, so that rounding does not add up. What
  /// `OnField` hands back is only stored.
  void FlEdChange(Field sender, double value);

  double Width() const { return width_; }
  double Height() const { return height_; }
  bool Proportional() const { return isProportional_; }
  /// Checking the box changes no number until one is edited again.
  void SetProportional(bool checked) { isProportional_ = checked; }

  /// What the dialog answers when it is confirmed: halves become even.
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
