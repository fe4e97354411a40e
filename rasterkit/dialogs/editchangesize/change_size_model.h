#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <rasterkit/bands/stage/filter.h>
#include <rasterkit/dialogs/editchangesize/size_rules.h>
#include <rasterkit/metadata/resolution.h>
#include <rasterkit/pictures/recipes/recipe.h>

namespace rasterkit {

/// Why a size cannot be confirmed.
enum class SizeFault { none, outOfRange, needsResolution, tooLarge, beyondMemory, unchanged };

/// The state and the rules of the change-size dialog, without a window. Numbers are in pixels
/// unless another unit is set.
class ChangeSizeModel {
 public:
  enum class Field { width, height };
  /// The largest number that a field accepts.
  static constexpr double kGreatest = INT32_MAX;
  /// Limits of the resolution of millimeters.
  static constexpr double kLeastDpi = 1, kGreatestDpi = 100'000;

  /// The starting sizes, in pixels, define the proportion while the dialog is open.
  ChangeSizeModel(int32_t startWidth, int32_t startHeight,
                  const SizeRules& rules = kEntrySizeRules);

  /// Called if a field must show another number than the user entered.
  std::function<void(Field field, double value)> OnField;
  /// Called if everything must be shown anew: after another unit or resolution, Undo and Redo.
  std::function<void()> OnState;
  /// Returns the memory of a result in bytes, or nothing if a picture cannot have that size; may be
  /// empty. It must not throw.
  std::function<std::optional<uint64_t>(int32_t width, int32_t height)> BytesOf;

  /// The user (or the form, by setting a field) set a field to `value`. The other field follows
  /// while the box is checked, always by the starting sizes, so that rounding errors do not add up.
  /// Values set by `OnField` are only stored.
  void FlEdChange(Field sender, double value);

  double Width() const { return now_.width; }
  double Height() const { return now_.height; }
  bool Proportional() const { return now_.isProportional; }
  /// Checking the box changes no number until one is edited again.
  void SetProportional(bool checked);

  /// Returns the result of the dialog in pixels, rounded, halves to even. A side that follows in
  /// proportion has at least one pixel where the rules have such a limit.
  int32_t RoundedWidth() const;
  int32_t RoundedHeight() const;

  /// The size in pixels that the numbers stand for, neither rounded nor limited.
  double ExactPixels(Field field) const;

  /// The field that was edited last.
  Field Lead() const { return now_.lead; }
  /// Whether the number of the other field is in proportion to it.
  bool FollowsLead() const;
  LengthUnit Unit() const { return now_.unit; }
  /// Shows the same size in another unit: whole pixels, percent of the start, millimeters.
  void SetUnit(LengthUnit unit);
  /// The resolution that millimeters are taken at; 0 if none is set.
  double Dpi() const { return now_.dpi; }
  /// Keeps the millimeters, so that the pixels change.
  void SetDpi(double dpi);
  /// What the picture states; also the resolution of millimeters at the start.
  void SetOwnResolution(const Resolution& dpi);
  const Resolution& OwnResolution() const { return own_; }
  Filter GetFilter() const { return now_.filter; }
  void SetFilter(Filter filter);

  SizeFault Fault() const;
  bool CanConfirm() const { return Fault() == SizeFault::none; }

  bool CanUndo() const { return !undo_.empty(); }
  bool CanRedo() const { return !redo_.empty(); }
  void Undo();
  void Redo();
  /// Numbers that are typed into one field are one change until this call.
  void EndTyping() { typed_ = Typed::nothing; }
  /// The state as it is becomes the first one: it cannot be undone.
  void ForgetHistory();

  const SizeRules& Rules() const { return rules_; }

 private:
  struct State {
    LengthUnit unit = LengthUnit::pixels;
    double dpi = 0, width = 0, height = 0;
    Field lead = Field::width;
    bool isProportional = true;
    Filter filter = Filter::automatic;
    friend bool operator==(const State&, const State&) = default;
  };

  double& Value(Field field) { return field == Field::width ? now_.width : now_.height; }
  double Start(Field field) const;
  /// The number of the field that is not `lead`, in proportion to it; nothing without one.
  std::optional<double> Following(Field lead, double value) const;
  double InUnit(Field field, double pixels) const;
  int32_t Rounded(Field field) const;
  void Change(const State& after);
  enum class Typed { nothing, width, height, dpi };
  /// `typed`: a further number typed at the same place belongs to the same change.
  void Note(const State& before, Typed typed = Typed::nothing);
  void Move(std::vector<State>& from, std::vector<State>& to);

  SizeRules rules_;
  int32_t startWidth_, startHeight_;
  Resolution own_;
  State now_;
  std::vector<State> undo_, redo_;
  bool isFollowing_ = false;
  Typed typed_ = Typed::nothing;
};

}  // namespace rasterkit
