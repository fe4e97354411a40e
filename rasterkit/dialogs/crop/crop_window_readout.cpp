#include <array>
#include <cmath>
#include <numeric>

#include <rasterkit/dialogs/bitmapframe/memory_size.h>
#include <rasterkit/dialogs/crop/crop_window_model.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

// What the crop window says about its rectangle.
namespace rasterkit {
namespace {

std::string Filled(std::string_view key, const std::vector<std::string>& values) {
  return FormatText(ResourceString(key), values);
}

/// Without zeros at the end: 300, 203.2.
std::string DpiText(double dpi) {
  return std::abs(dpi - std::nearbyint(dpi)) < 0.05 ? FixedText(dpi, 0) : FixedText(dpi, 1);
}

/// " m", or nothing for a unit without a name.
std::string WithSpace(const std::string& symbol) {
  return symbol.empty() ? symbol : " " + symbol;
}

}  // namespace

std::string CropWindowModel::SizeText() const {
  const TRect rect = Rect();
  const int width = rect.Right - rect.Left, height = rect.Bottom - rect.Top;
  const MemorySize memory = MemorySizeOf(facts_.bits, width, height);
  return Filled(rsCropSize,
                {std::to_string(width), std::to_string(height), memory.number, memory.unit});
}

std::string CropWindowModel::RatioText() const {
  const TRect rect = Rect();
  const int width = rect.Right - rect.Left, height = rect.Bottom - rect.Top;
  if (width <= 0 || height <= 0) return "";
  constexpr int kReadable = 50, kDecimals = 3;
  const int divisor = std::gcd(width, height);
  if (width / divisor <= kReadable && height / divisor <= kReadable) {
    return Filled(rsCropRatioOf,
                  {std::to_string(width / divisor), std::to_string(height / divisor)});
  }
  return Filled(rsCropRatioOf, {FixedText(static_cast<double>(width) / height, kDecimals), "1"});
}

std::string CropWindowModel::PaperText() const {
  const Resolution& dpi = facts_.resolution;
  if (!dpi.IsKnown()) return ResourceString(rsCropNoResolution);
  const TRect rect = Rect();
  const UnitPlace pixel = PixelSizeIn(facts_, LengthUnit::millimeters);
  const std::string dots =
      DpiText(dpi.x) == DpiText(dpi.y) ? DpiText(dpi.x) : DpiText(dpi.x) + " x " + DpiText(dpi.y);
  return Filled(rsCropOnPaper, {dots, FixedText((rect.Right - rect.Left) * pixel.x, 1),
                                FixedText((rect.Bottom - rect.Top) * pixel.y, 1)});
}

std::string CropWindowModel::MapText() const {
  if (!KnowsUnit(facts_, LengthUnit::map)) return ResourceString(rsCropNoPosition);
  const TRect rect = Rect();
  const int decimals = DecimalsFor(facts_, LengthUnit::map);
  const auto text = [&](double value) { return FixedText(value, decimals); };
  const UnitPlace first = PlaceOfCorner(facts_, LengthUnit::map, rect.Left, rect.Top);
  const UnitPlace last = PlaceOfCorner(facts_, LengthUnit::map, rect.Right, rect.Bottom);
  const UnitPlace pixel = PixelSizeIn(facts_, LengthUnit::map);
  const std::string unit = WithSpace(facts_.mapUnit.symbol);
  return Filled(rsCropOnMap, {text(first.x), text(first.y), text(last.x), text(last.y),
                              text((rect.Right - rect.Left) * pixel.x),
                              text((rect.Bottom - rect.Top) * pixel.y) + unit});
}

std::string CropWindowModel::MouseText(const std::optional<TPoint>& corner) const {
  if (!corner) return ResourceString(rsCropMouseOutside);
  const std::vector<std::string> pixels = {std::to_string(corner->X), std::to_string(corner->Y)};
  const bool isMap = KnowsUnit(facts_, LengthUnit::map);
  const LengthUnit unit = unit_ != LengthUnit::pixels ? unit_
                          : isMap                     ? LengthUnit::map
                                                      : LengthUnit::pixels;
  if (unit == LengthUnit::pixels) return Filled(rsCropMouse, pixels);
  const UnitPlace place = PlaceOfCorner(facts_, unit, corner->X, corner->Y);
  const int decimals = DecimalsFor(facts_, unit);
  std::string text = Filled(rsCropMouseInUnit,
                            {pixels[0], pixels[1], FixedText(place.x, decimals),
                             FixedText(place.y, decimals) + WithSpace(UnitSymbol(facts_, unit))});
  if (unit == LengthUnit::map || !isMap) return text;
  const UnitPlace onMap = PlaceOfCorner(facts_, LengthUnit::map, corner->X, corner->Y);
  const int mapDecimals = DecimalsFor(facts_, LengthUnit::map);
  return text + "; " + FixedText(onMap.x, mapDecimals) + ", " + FixedText(onMap.y, mapDecimals) +
         WithSpace(facts_.mapUnit.symbol);
}

std::string CropWindowModel::RoundingText() const {
  const CutShape& shape = tool_->Shape();
  if (shape.IsFixed() && (shape.width > facts_.width || shape.height > facts_.height)) {
    return Filled(rsCropSheetTooLarge, {std::to_string(shape.width), std::to_string(shape.height)});
  }
  return IsStill(roundedRect_) ? rounding_ : std::string();
}

}  // namespace rasterkit
