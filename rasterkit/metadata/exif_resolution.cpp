#include <cmath>

#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>

namespace rasterkit {
namespace {

constexpr uint32_t kNoUnit = 1, kInch = 2, kCentimeter = 3;
constexpr double kCentimetersPerInch = 2.54;

}  // namespace

std::optional<int> OrientationOf(const ExifBlock& exif) {
  const auto value = exif.Number(ExifDirectoryId::main, exif::kOrientation);
  if (!value || *value < 1 || *value > 8) return std::nullopt;
  return static_cast<int>(*value);
}

Resolution ResolutionOf(const ExifBlock& exif) {
  const std::vector<double> x = exif.Numbers(ExifDirectoryId::main, exif::kResolutionX);
  const std::vector<double> y = exif.Numbers(ExifDirectoryId::main, exif::kResolutionY);
  const auto unit = exif.Number(ExifDirectoryId::main, exif::kResolutionUnit).value_or(kInch);
  if (x.empty() || y.empty() || (unit != kInch && unit != kCentimeter)) return {};
  const double factor = unit == kCentimeter ? kCentimetersPerInch : 1;
  const Resolution stated = {x[0] * factor, y[0] * factor};
  const bool isUsable = stated.IsKnown() && std::isfinite(stated.x) && std::isfinite(stated.y);
  return isUsable ? stated : Resolution{};
}

void SetResolution(ExifBlock& exif, const Resolution& resolution) {
  const auto main = ExifDirectoryId::main;
  if (ResolutionOf(exif) == resolution) return;
  uint32_t unit = exif.Number(main, exif::kResolutionUnit).value_or(kInch);
  if (unit != kInch && unit != kCentimeter) unit = kInch;
  const double factor = unit == kCentimeter ? kCentimetersPerInch : 1;
  constexpr double kUsual = 72;
  const bool isKnown = resolution.IsKnown();
  exif.SetRational(main, exif::kResolutionX, isKnown ? resolution.x / factor : kUsual);
  exif.SetRational(main, exif::kResolutionY, isKnown ? resolution.y / factor : kUsual);
  const auto unitWord = static_cast<uint16_t>(isKnown ? unit : kNoUnit);
  exif.SetWords(main, exif::kResolutionUnit, std::span(&unitWord, 1));
}

}  // namespace rasterkit
