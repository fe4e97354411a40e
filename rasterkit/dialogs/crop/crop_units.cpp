#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include <rasterkit/dialogs/crop/crop_units.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {
namespace {

constexpr double kMillimetersPerInch = 25.4;
constexpr double kHalf = 0.5;

double Rounded(double value, int decimals) {
  const double scale = std::pow(10, decimals);
  return std::nearbyint(value * scale) / scale;
}

}  // namespace

CropFacts CropFactsOf(const TBitmap& pixels, const Picture& picture, const std::string& mapUnit) {
  CropFacts facts;
  facts.width = pixels.Width();
  facts.height = pixels.Height();
  facts.bits = pixels.StoredBits();
  facts.resolution = picture.GetMetadata().resolution;
  facts.affine = picture.GetPlacement().affine;
  facts.mapUnit = MapUnitOf(picture.GetPlacement().system);
  if (!facts.mapUnit.IsKnown()) facts.mapUnit = MapUnitNamed(mapUnit);
  return facts;
}

bool KnowsUnit(const CropFacts& facts, LengthUnit unit) {
  switch (unit) {
    case LengthUnit::millimeters:
      return facts.resolution.IsKnown();
    case LengthUnit::map:
      return facts.affine && facts.affine->Inverse();
    default:
      return true;
  }
}

UnitPlace PixelSizeIn(const CropFacts& facts, LengthUnit unit) {
  switch (unit) {
    case LengthUnit::percent:
      return {100.0 / std::max(facts.width, 1), 100.0 / std::max(facts.height, 1)};
    case LengthUnit::millimeters:
      return {kMillimetersPerInch / facts.resolution.x, kMillimetersPerInch / facts.resolution.y};
    case LengthUnit::map:
      return {std::hypot(facts.affine->xPerColumn, facts.affine->yPerColumn),
              std::hypot(facts.affine->xPerRow, facts.affine->yPerRow)};
    default:
      return {1, 1};
  }
}

UnitPlace PlaceOfCorner(const CropFacts& facts, LengthUnit unit, double column, double row) {
  if (unit == LengthUnit::map) {
    const MapPoint point = facts.affine->At(column - kHalf, row - kHalf);
    return {point.x, point.y};
  }
  // The ends of the picture are exactly 100 percent.
  if (unit == LengthUnit::percent) {
    return {100 * column / std::max(facts.width, 1), 100 * row / std::max(facts.height, 1)};
  }
  const UnitPlace pixel = PixelSizeIn(facts, unit);
  return {column * pixel.x, row * pixel.y};
}

UnitPlace CornerOfPlace(const CropFacts& facts, LengthUnit unit, UnitPlace place) {
  if (unit == LengthUnit::map) {
    const MapPoint pixel = facts.affine->Back({place.x, place.y}).value_or(MapPoint{});
    return {pixel.x + kHalf, pixel.y + kHalf};
  }
  const UnitPlace pixel = PixelSizeIn(facts, unit);
  return {place.x / pixel.x, place.y / pixel.y};
}

int DecimalsFor(const CropFacts& facts, LengthUnit unit) {
  if (unit == LengthUnit::pixels) return 0;
  constexpr int kMost = 12;
  constexpr double kStepsPerPixel = 10;
  const UnitPlace pixel = PixelSizeIn(facts, unit);
  const double step = std::min(pixel.x, pixel.y) / kStepsPerPixel;
  if (!(step > 0)) return kMost;
  return std::clamp(static_cast<int>(std::ceil(-std::log10(step))), 0, kMost);
}

RecipeCrop CropIn(const CropFacts& facts, LengthUnit unit, const TRect& rect) {
  RecipeCrop crop;
  const bool isSkewed = unit == LengthUnit::map && !facts.affine->IsStraight() &&
                        !(facts.affine->xPerColumn == 0 && facts.affine->yPerRow == 0);
  crop.unit = isSkewed ? LengthUnit::pixels : unit;
  const int decimals = DecimalsFor(facts, crop.unit);
  const UnitPlace start = PlaceOfCorner(facts, crop.unit, rect.Left, rect.Top);
  const UnitPlace end = PlaceOfCorner(facts, crop.unit, rect.Right, rect.Bottom);
  const auto [left, right] = std::minmax(start.x, end.x);
  const auto [low, high] = std::minmax(start.y, end.y);
  const bool isUpward = crop.unit == LengthUnit::map;
  crop.left = Rounded(left, decimals);
  crop.right = Rounded(right, decimals);
  crop.top = Rounded(isUpward ? high : low, decimals);
  crop.bottom = Rounded(isUpward ? low : high, decimals);
  return crop;
}

std::string UnitSymbol(const CropFacts& facts, LengthUnit unit) {
  switch (unit) {
    case LengthUnit::percent:
      return "%";
    case LengthUnit::millimeters:
      return "mm";
    case LengthUnit::map:
      return facts.mapUnit.symbol;
    default:
      return "px";
  }
}

std::string FixedText(double value, int decimals) {
  // The largest double has 309 digits.
  std::array<char, 400> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                 std::chars_format::fixed, decimals)
                       .ptr;
  std::string number(text.data(), end);
  // -0.00 is 0.00.
  if (number.find_first_of("123456789") == std::string::npos && number.starts_with('-')) {
    number.erase(0, 1);
  }
  if (const size_t point = number.find('.'); point != std::string::npos) {
    number.replace(point, 1, DecimalMark());
  }
  return number;
}

}  // namespace rasterkit
