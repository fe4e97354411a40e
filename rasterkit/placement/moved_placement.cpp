#include <algorithm>
#include <utility>

#include <rasterkit/placement/geo_tags.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/stated_difference.h>

namespace rasterkit {
namespace {

// Places in the rational model. Its lines and samples count from the center of the first pixel.
constexpr size_t kLineOffset = 2, kSampleOffset = 3, kLineScale = 7, kSampleScale = 8;
constexpr size_t kLineTerms = 12, kSampleTerms = 52, kNumeratorTerms = 20, kFractionTerms = 40;

using ModelPlace = RationalModel::iterator;

/// Makes a scale positive; the numerator takes the sign.
void TurnSign(double& scale, ModelPlace numerator) {
  if (scale >= 0) return;
  scale = -scale;
  std::for_each(numerator, numerator + kNumeratorTerms, [](double& term) { term = -term; });
}

/// The model gives offset + scale f for lines and for samples. A move along the axes scales and
/// shifts both and may exchange them, so that the same fractions stay exact.
bool MoveModel(RationalModel& model, const Affine& toNew) {
  const bool isStraight = toNew.IsStraight();
  const bool isExchanged = toNew.xPerColumn == 0 && toNew.yPerRow == 0;
  if (!isStraight && !isExchanged) return false;
  const auto line = model.begin() + kLineTerms, sample = model.begin() + kSampleTerms;
  const MapPoint offset = toNew.At(model[kSampleOffset], model[kLineOffset]);
  if (isExchanged) {
    std::swap_ranges(line, line + kFractionTerms, sample);
    std::swap(model[kLineScale], model[kSampleScale]);
  }
  model[kSampleOffset] = offset.x;
  model[kLineOffset] = offset.y;
  model[kSampleScale] *= isExchanged ? toNew.xPerRow : toNew.xPerColumn;
  model[kLineScale] *= isExchanged ? toNew.yPerColumn : toNew.yPerRow;
  TurnSign(model[kSampleScale], sample);
  TurnSign(model[kLineScale], line);
  return true;
}

/// Control points count from the corner, a move from the center of the first pixel.
void MovePoint(ControlPoint& point, const Affine& toNew) {
  const MapPoint place = toNew.At(point.column - 0.5, point.row - 0.5);
  point.column = place.x + 0.5;
  point.row = place.y + 0.5;
}

}  // namespace

void FollowPixels(Placement& placement, const PixelMove& move, Changes& changes) {
  if (move.toOld == Affine() && move.oldWidth == move.width && move.oldHeight == move.height) {
    return;
  }
  if (placement.affine) placement.affine = placement.affine->After(move.toOld);
  if (placement.affine && !placement.affine->IsFinite()) {
    placement.affine.reset();
    changes.Lose(LossKind::position, "map position", "its numbers would be too large");
  }
  for (StatedPosition& position : placement.stated) {
    position.affine = position.affine.After(move.toOld);
  }
  detail::CompareStated(placement, move.width, move.height);
  const std::optional<Affine> toNew = move.toOld.Inverse();
  if (!placement.controlPoints.empty() && !toNew) {
    changes.Lose(LossKind::controlPoints,
                 std::to_string(placement.controlPoints.size()) + " control points",
                 "the pixels were moved in a way that cannot be inverted");
    placement.controlPoints.clear();
  }
  if (toNew) {
    for (ControlPoint& point : placement.controlPoints) MovePoint(point, *toNew);
  }
  if (placement.rationalModel.size() != detail::kRationalNumbers) {
    placement.rationalModel.clear();
  } else if (!toNew || !MoveModel(placement.rationalModel, *toNew)) {
    placement.rationalModel.clear();
    changes.Lose(LossKind::position, "rational model",
                 "it cannot follow a turn by other than quarters");
  }
}

}  // namespace rasterkit
