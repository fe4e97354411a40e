#include <algorithm>
#include <array>
#include <cmath>

#include <rasterkit/dialogs/bitmapframe/crop_numbers.h>
#include <rasterkit/dialogs/crop/crop_window_model.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

bool SameRect(const TRect& a, const TRect& b) {
  return a.Left == b.Left && a.Top == b.Top && a.Right == b.Right && a.Bottom == b.Bottom;
}

/// The nearest whole number, halves to even, within what the picture can have.
int Nearest(double value) {
  constexpr double kLimit = 1 << 29;
  return static_cast<int>(std::nearbyint(std::clamp(value, -kLimit, kLimit)));
}

}  // namespace

CropWindowModel::CropWindowModel(BmpCutModel& tool, const CropFacts& facts)
    : tool_(&tool),
      facts_(facts),
      mayChooseMapUnit_(KnowsUnit(facts, LengthUnit::map) && !facts.mapUnit.IsKnown()) {}

TRect CropWindowModel::Rect() const {
  return CropNumbersOf(*tool_).Rect();
}

bool CropWindowModel::IsStill(const TRect& rect) const {
  return SameRect(rect, Rect());
}

void CropWindowModel::Start(const RecipeCrop& crop, const TRect& rect) {
  tool_->SetBmpCutRect(RDRect(rect));
  tool_->ForgetCutHistory();
  stated_ = Stated{Rect(), crop};
  outside_ = crop.outside;
}

void CropWindowModel::StartUnit(LengthUnit unit) {
  unit_ = KnowsUnit(facts_, unit) ? unit : LengthUnit::pixels;
}

void CropWindowModel::ChooseUnit(LengthUnit unit) {
  if (!KnowsUnit(facts_, unit)) return;
  unit_ = unit;
  isUnitChosen_ = true;
  stated_.reset();
}

void CropWindowModel::ChooseMapUnit(const MapUnit& unit) {
  if (!mayChooseMapUnit_) return;
  facts_.mapUnit = unit;
  if (!KnowsRatio(facts_, ratio_.kind)) ratio_ = {};
  UseShape();
}

CropNumber CropWindowModel::Number(CropField field) const {
  const TRect rect = Rect();
  const UnitPlace pixel = PixelSizeIn(facts_, unit_);
  if (field == CropField::width || field == CropField::height) {
    const bool isWidth = field == CropField::width;
    const double size = isWidth ? pixel.x : pixel.y;
    const int pixels = isWidth ? rect.Right - rect.Left : rect.Bottom - rect.Top;
    // No more than the shown digits, so that the least number can be typed.
    return {pixels * size, 0, (isWidth ? facts_.width : facts_.height) * size * 2};
  }
  const auto numberOf = [&](double column, double row) {
    const UnitPlace place = PlaceOfCorner(facts_, unit_, column, row);
    return field == CropField::left ? place.x : place.y;
  };
  CropNumber number{numberOf(rect.Left, rect.Top), numberOf(0, 0), numberOf(0, 0)};
  for (const int column : {0, facts_.width}) {
    for (const int row : {0, facts_.height}) {
      number.minimum = std::min(number.minimum, numberOf(column, row));
      number.maximum = std::max(number.maximum, numberOf(column, row));
    }
  }
  return number;
}

bool CropWindowModel::MayType(CropField field) const {
  const bool isPlace = field == CropField::left || field == CropField::top;
  return isPlace || !tool_->Shape().IsFixed();
}

/// The rectangle with its top left corner at another one. It shrinks at the far edges of the
/// picture, unless its shape is kept.
TRect CropWindowModel::Moved(UnitPlace corner) const {
  const TRect rect = Rect();
  CropNumbers wanted{Nearest(corner.x), Nearest(corner.y), rect.Right - rect.Left,
                     rect.Bottom - rect.Top};
  if (tool_->Shape().ratio > 0) {
    wanted.left = std::clamp(wanted.left, 0, facts_.width - wanted.width);
    wanted.top = std::clamp(wanted.top, 0, facts_.height - wanted.height);
  }
  return InsideBitmap(wanted, tool_->BitmapRect()).Rect();
}

void CropWindowModel::TakeTyped(const TRect& rect) {
  tool_->SetBmpCutRect(RDRect(rect));
  stated_ = Stated{rect, CropIn(facts_, unit_, rect)};
  stated_->crop.outside = outside_;
}

void CropWindowModel::Type(CropField field, double value) {
  if (!MayType(field)) return;
  const TRect rect = Rect();
  const UnitPlace pixel = PixelSizeIn(facts_, unit_);
  const TRect& bitmap = tool_->BitmapRect();
  if (field == CropField::width) {
    const int change = Nearest(value / pixel.x) - (rect.Right - rect.Left);
    TakeTyped(
        ResizedCut(rect, change == 0 ? 0 : change, 0, tool_->Shape(), bitmap.Right, bitmap.Bottom));
  } else if (field == CropField::height) {
    const int change = Nearest(value / pixel.y) - (rect.Bottom - rect.Top);
    TakeTyped(ResizedCut(rect, 0, change, tool_->Shape(), bitmap.Right, bitmap.Bottom));
  } else {
    UnitPlace place = PlaceOfCorner(facts_, unit_, rect.Left, rect.Top);
    (field == CropField::left ? place.x : place.y) = value;
    TakeTyped(Moved(CornerOfPlace(facts_, unit_, place)));
  }
  const std::string typed = FixedText(value, Decimals());
  const std::string shown = FixedText(Number(field).value, Decimals());
  roundedRect_ = Rect();
  rounding_.clear();
  if (typed == shown) return;
  const std::array values = {typed, shown, UnitSymbol(facts_, unit_)};
  rounding_ = FormatText(ResourceString(rsCropRounded), values);
}

void CropWindowModel::Step(CropField field, int pixels) {
  if (!MayType(field)) return;
  const TRect rect = Rect();
  const TRect& bitmap = tool_->BitmapRect();
  if (field == CropField::width || field == CropField::height) {
    const bool isWidth = field == CropField::width;
    TakeTyped(ResizedCut(rect, isWidth ? pixels : 0, isWidth ? 0 : pixels, tool_->Shape(),
                         bitmap.Right, bitmap.Bottom));
    return;
  }
  // Up means a greater number, also where the map's y grows upward or the picture is turned.
  const auto valueAt = [&](int column, int row) {
    const UnitPlace place = PlaceOfCorner(facts_, unit_, column, row);
    return field == CropField::left ? place.x : place.y;
  };
  const double here = valueAt(rect.Left, rect.Top);
  const double across = valueAt(rect.Left + 1, rect.Top) - here;
  const double down = valueAt(rect.Left, rect.Top + 1) - here;
  const bool movesColumn =
      std::abs(across) > std::abs(down) ||
      (across != 0 && std::abs(across) == std::abs(down) && field == CropField::left);
  const int signedPixels = (movesColumn ? across : down) < 0 ? -pixels : pixels;
  TakeTyped(Moved({double{0} + rect.Left + (movesColumn ? signedPixels : 0),
                   double{0} + rect.Top + (movesColumn ? 0 : signedPixels)}));
}

void CropWindowModel::UseShape() {
  tool_->SetShape(ShapeOf(ratio_, facts_));
}

void CropWindowModel::StartRatio(const CropRatio& ratio) {
  ratio_ = ratio;
  if (!KnowsRatio(facts_, ratio.kind)) ratio_.kind = RatioKind::any;
  UseShape();
}

void CropWindowModel::ChooseRatio(const CropRatio& ratio) {
  if (!KnowsRatio(facts_, ratio.kind)) return;
  ratio_ = ratio;
  UseShape();
  if (tool_->Shape().ratio <= 0 || facts_.width <= 0 || facts_.height <= 0) return;
  const TRect cut = tool_->CutRectExists() ? Rect() : TRect{};
  tool_->SetBmpCutRect(RDRect(ReshapedCut(cut, tool_->Shape(), facts_.width, facts_.height)));
}

RecipeCrop CropWindowModel::Answer() const {
  if (stated_ && IsStill(stated_->rect)) return stated_->crop;
  RecipeCrop crop = CropIn(facts_, isUnitChosen_ ? unit_ : LengthUnit::pixels, Rect());
  crop.outside = outside_;
  return crop;
}

}  // namespace rasterkit
