#include <algorithm>
#include <cmath>
#include <utility>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

constexpr double kMillimetersPerInch = 25.4;
constexpr double kPercent = 100;

ChangeSizeModel::Field Other(ChangeSizeModel::Field field) {
  using Field = ChangeSizeModel::Field;
  return field == Field::width ? Field::height : Field::width;
}

}  // namespace

ChangeSizeModel::ChangeSizeModel(int32_t startWidth, int32_t startHeight, const SizeRules& rules)
    : rules_(rules), startWidth_(startWidth), startHeight_(startHeight) {
  now_.width = std::max(startWidth, 0);
  now_.height = std::max(startHeight, 0);
}

void ChangeSizeModel::FlEdChange(Field sender, double value) {
  if (isFollowing_) {
    Value(sender) = value;
    return;
  }
  const State before = now_;
  Value(sender) = value;
  now_.lead = sender;
  const Field other = Other(sender);
  const std::optional<double> following = Following(sender, value);
  const bool follows = now_.isProportional && following;
  if (follows) Value(other) = *following;
  Note(before, sender == Field::width ? Typed::width : Typed::height);
  if (!follows || !OnField) return;
  isFollowing_ = true;
  OnField(other, Value(other));
  isFollowing_ = false;
}

void ChangeSizeModel::SetProportional(bool checked) {
  State after = now_;
  after.isProportional = checked;
  Change(after);
}

void ChangeSizeModel::SetFilter(Filter filter) {
  State after = now_;
  after.filter = filter;
  Change(after);
}

void ChangeSizeModel::SetUnit(LengthUnit unit) {
  if (unit == now_.unit || unit == LengthUnit::map) return;
  const double width = ExactPixels(Field::width), height = ExactPixels(Field::height);
  const bool follows = FollowsLead();
  const State before = now_;
  now_.unit = unit;
  now_.width = InUnit(Field::width, width);
  now_.height = InUnit(Field::height, height);
  if (unit == LengthUnit::pixels) {
    now_.width = Rounded(Field::width);
    now_.height = Rounded(Field::height);
    if (follows) Value(Other(now_.lead)) = *Following(now_.lead, Value(now_.lead));
  }
  Note(before);
  if (OnState) OnState();
}

void ChangeSizeModel::SetDpi(double dpi) {
  const State before = now_;
  now_.dpi = std::isfinite(dpi) ? std::max(dpi, 0.0) : 0;
  Note(before, Typed::dpi);
  if (OnState) OnState();
}

void ChangeSizeModel::SetOwnResolution(const Resolution& dpi) {
  own_ = dpi;
  if (dpi.IsKnown()) now_.dpi = std::max(dpi.x, dpi.y);
}

double ChangeSizeModel::ExactPixels(Field field) const {
  const bool isWidth = field == Field::width;
  const double number = isWidth ? now_.width : now_.height;
  if (now_.unit == LengthUnit::percent) {
    return number * (isWidth ? startWidth_ : startHeight_) / kPercent;
  }
  const bool isOnPaper = now_.unit == LengthUnit::millimeters;
  return isOnPaper ? number * now_.dpi / kMillimetersPerInch : number;
}

double ChangeSizeModel::InUnit(Field field, double pixels) const {
  if (now_.unit == LengthUnit::percent) {
    const double start = field == Field::width ? startWidth_ : startHeight_;
    return start > 0 ? pixels * kPercent / start : 0;
  }
  if (now_.unit != LengthUnit::millimeters) return pixels;
  return now_.dpi > 0 ? pixels * kMillimetersPerInch / now_.dpi : 0;
}

// Lengths on paper keep their proportion, also where the dots are not square.
double ChangeSizeModel::Start(Field field) const {
  if (now_.unit == LengthUnit::percent) return kPercent;
  const bool isWidth = field == Field::width;
  const double pixels = isWidth ? startWidth_ : startHeight_;
  if (now_.unit == LengthUnit::pixels) return pixels;
  return own_.IsKnown() ? pixels / (isWidth ? own_.x : own_.y) : pixels;
}

std::optional<double> ChangeSizeModel::Following(Field lead, double value) const {
  const double start = Start(lead), startOfOther = Start(Other(lead));
  if (start == 0 || startOfOther == 0) return std::nullopt;
  return value / start * startOfOther;
}

bool ChangeSizeModel::FollowsLead() const {
  constexpr double kRounding = 1e-9;
  const bool isWidth = now_.lead == Field::width;
  const double lead = isWidth ? now_.width : now_.height;
  const double other = isWidth ? now_.height : now_.width;
  const std::optional<double> following = Following(now_.lead, lead);
  return following && std::abs(*following - other) <= kRounding * std::max(*following, other);
}

int32_t ChangeSizeModel::Rounded(Field field) const {
  const double pixels = std::clamp(ExactPixels(field), 0.0, kGreatest);
  const auto side = static_cast<double>(Round(pixels));
  if (!rules_.refusesWrongSizes) {
    return static_cast<int32_t>(std::clamp(side, rules_.leastSide, rules_.greatestSide));
  }
  const bool follows = now_.isProportional && field != now_.lead;
  return static_cast<int32_t>(follows ? std::max(side, rules_.leastSide) : side);
}

int32_t ChangeSizeModel::RoundedWidth() const {
  return Rounded(Field::width);
}

int32_t ChangeSizeModel::RoundedHeight() const {
  return Rounded(Field::height);
}

SizeFault ChangeSizeModel::Fault() const {
  const bool isOnPaper = now_.unit == LengthUnit::millimeters;
  if (rules_.refusesWrongSizes) {
    if (isOnPaper && !(now_.dpi >= kLeastDpi && now_.dpi <= kGreatestDpi)) {
      return SizeFault::needsResolution;
    }
    const auto fits = [&](int32_t side) {
      return side >= rules_.leastSide && side <= rules_.greatestSide;
    };
    if (!fits(RoundedWidth()) || !fits(RoundedHeight())) return SizeFault::outOfRange;
    if (BytesOf) {
      const std::optional<uint64_t> need = BytesOf(RoundedWidth(), RoundedHeight());
      if (!need) return SizeFault::tooLarge;
      if (*need > PictureMemoryLimit()) return SizeFault::beyondMemory;
    }
  }
  if (!rules_.needsChange) return SizeFault::none;
  const bool isSameSize = RoundedWidth() == startWidth_ && RoundedHeight() == startHeight_;
  const bool isSameDpi = !isOnPaper || (own_.x == now_.dpi && own_.y == now_.dpi);
  return isSameSize && isSameDpi ? SizeFault::unchanged : SizeFault::none;
}

void ChangeSizeModel::Change(const State& after) {
  if (after == now_) return;
  Note(std::exchange(now_, after));
}

void ChangeSizeModel::Note(const State& before, Typed typed) {
  if (before == now_) return;
  const bool isSameChange = typed != Typed::nothing && typed == typed_;
  typed_ = typed;
  redo_.clear();
  if (isSameChange || rules_.mostUndoSteps == 0) return;
  if (undo_.size() == rules_.mostUndoSteps) undo_.erase(undo_.begin());
  undo_.push_back(before);
}

void ChangeSizeModel::Move(std::vector<State>& from, std::vector<State>& to) {
  if (from.empty()) return;
  to.push_back(std::exchange(now_, from.back()));
  from.pop_back();
  typed_ = Typed::nothing;
  if (OnState) OnState();
}

void ChangeSizeModel::Undo() {
  Move(undo_, redo_);
}

void ChangeSizeModel::Redo() {
  Move(redo_, undo_);
}

void ChangeSizeModel::ForgetHistory() {
  undo_.clear();
  redo_.clear();
  typed_ = Typed::nothing;
}

}  // namespace rasterkit
