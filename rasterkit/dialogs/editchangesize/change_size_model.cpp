#include <algorithm>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

int32_t Rounded(double value) {
  return static_cast<int32_t>(Round(std::clamp(value, 0.0, ChangeSizeModel::kGreatest)));
}

}  // namespace

ChangeSizeModel::ChangeSizeModel(int32_t startWidth, int32_t startHeight)
    : startWidth_(startWidth),
      startHeight_(startHeight),
      width_(std::max(startWidth, 0)),
      height_(std::max(startHeight, 0)) {}

void ChangeSizeModel::FlEdChange(Field sender, double value) {
  Value(sender) = value;
  if (!isProportional_ || isFollowing_) return;
  if (startWidth_ == 0 || startHeight_ == 0) return;
  const bool isWidth = sender == Field::width;
  const int32_t start = isWidth ? startWidth_ : startHeight_;
  const int32_t startOfOther = isWidth ? startHeight_ : startWidth_;
  const Field other = isWidth ? Field::height : Field::width;
  Value(other) = value / start * startOfOther;
  if (!OnField) return;
  isFollowing_ = true;
  OnField(other, Value(other));
  isFollowing_ = false;
}

int32_t ChangeSizeModel::RoundedWidth() const {
  return Rounded(width_);
}

int32_t ChangeSizeModel::RoundedHeight() const {
  return Rounded(height_);
}

}  // namespace rasterkit
