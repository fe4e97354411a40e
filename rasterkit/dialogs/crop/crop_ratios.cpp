#include <algorithm>
#include <array>
#include <cmath>
#include <locale>
#include <numbers>
#include <sstream>
#include <utility>

#include <rasterkit/dialogs/crop/crop_ratios.h>

namespace rasterkit {
namespace {

constexpr std::array kNames = {"any",           "as-picture",    "square",       "iso-portrait",
                               "iso-landscape", "four-to-three", "three-to-two", "sixteen-to-nine",
                               "typed",         "paper"};

/// Short sides of A0 to A4 in millimeters; the long side is the short one of the larger format.
constexpr std::array kPaperSides = {841, 594, 420, 297, 210};
constexpr int kLongSideOfA0 = 1189;
constexpr double kMillimetersPerMeter = 1000;

/// Width by height of a ratio on paper becomes one of pixels, which need not be square.
double InPixels(double ratio, const CropFacts& facts) {
  return facts.resolution.IsKnown() ? ratio * facts.resolution.x / facts.resolution.y : ratio;
}

double RatioOf(const CropRatio& ratio, const CropFacts& facts) {
  switch (ratio.kind) {
    case RatioKind::asPicture:
      return static_cast<double>(facts.width) / std::max(facts.height, 1);
    case RatioKind::square:
      return 1;
    case RatioKind::isoPortrait:
      return InPixels(1 / std::numbers::sqrt2, facts);
    case RatioKind::isoLandscape:
      return InPixels(std::numbers::sqrt2, facts);
    case RatioKind::fourToThree:
      return 4.0 / 3;
    case RatioKind::threeToTwo:
      return 3.0 / 2;
    case RatioKind::sixteenToNine:
      return 16.0 / 9;
    case RatioKind::typed:
      return ratio.typedWidth / ratio.typedHeight;
    default:
      return 0;
  }
}

CutShape ShapeOfPaper(const CropRatio& ratio, const CropFacts& facts) {
  const size_t paper = static_cast<size_t>(std::clamp(ratio.paper, 0, kSmallestPaper));
  double across = paper == 0 ? kLongSideOfA0 : kPaperSides[paper - 1], down = kPaperSides[paper];
  if (ratio.isSwapped) std::swap(across, down);
  const UnitPlace pixel = PixelSizeIn(facts, LengthUnit::map);
  const double unitsPerMillimeter = ratio.scale / kMillimetersPerMeter / facts.mapUnit.size;
  const auto pixels = [](double length) {
    constexpr double kMost = 1 << 30;
    return static_cast<int>(std::clamp(std::nearbyint(length), 1.0, kMost));
  };
  CutShape shape;
  shape.width = pixels(across * unitsPerMillimeter / pixel.x);
  shape.height = pixels(down * unitsPerMillimeter / pixel.y);
  shape.ratio = static_cast<double>(shape.width) / shape.height;
  return shape;
}

bool IsSide(double side) {
  return side > 0 && side <= kGreatestTypedSide;
}

}  // namespace

bool KnowsRatio(const CropFacts& facts, RatioKind kind) {
  return kind != RatioKind::paper ||
         (KnowsUnit(facts, LengthUnit::map) && facts.mapUnit.IsLength());
}

CutShape ShapeOf(const CropRatio& ratio, const CropFacts& facts) {
  if (!KnowsRatio(facts, ratio.kind)) return {};
  if (ratio.kind == RatioKind::paper) return ShapeOfPaper(ratio, facts);
  const double value = RatioOf(ratio, facts);
  return {ratio.isSwapped && value > 0 ? 1 / value : value, 0, 0};
}

CropRatio Swapped(const CropRatio& ratio) {
  CropRatio swapped = ratio;
  switch (ratio.kind) {
    case RatioKind::any:
    case RatioKind::square:
      break;
    case RatioKind::isoPortrait:
      swapped.kind = RatioKind::isoLandscape;
      break;
    case RatioKind::isoLandscape:
      swapped.kind = RatioKind::isoPortrait;
      break;
    case RatioKind::typed:
      std::swap(swapped.typedWidth, swapped.typedHeight);
      break;
    default:
      swapped.isSwapped = !ratio.isSwapped;
  }
  return swapped;
}

std::string SettingOf(const CropRatio& ratio) {
  std::ostringstream line;
  line.imbue(std::locale::classic());
  line << kNames[static_cast<size_t>(ratio.kind)] << (ratio.isSwapped ? " swapped " : " upright ")
       << ratio.typedWidth << ' ' << ratio.typedHeight << ' ' << ratio.paper << ' ' << ratio.scale;
  return line.str();
}

CropRatio RatioOfSetting(const std::string& setting) {
  std::istringstream line(setting);
  line.imbue(std::locale::classic());
  CropRatio ratio;
  std::string name, side;
  line >> name >> side;
  const auto* const found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) return ratio;
  ratio.kind = static_cast<RatioKind>(found - kNames.begin());
  ratio.isSwapped = side == "swapped";
  double width = 0, height = 0, scale = 0;
  int paper = -1;
  if (line >> width >> height && IsSide(width) && IsSide(height)) {
    ratio.typedWidth = width;
    ratio.typedHeight = height;
  }
  if (line >> paper && paper >= 0 && paper <= kSmallestPaper) ratio.paper = paper;
  if (line >> scale && scale >= kLeastScale && scale <= kGreatestScale) ratio.scale = scale;
  return ratio;
}

}  // namespace rasterkit
