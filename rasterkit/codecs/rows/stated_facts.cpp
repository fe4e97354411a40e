#include <algorithm>
#include <cmath>
#include <string>

#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/exif_block.h>

namespace rasterkit::detail {
namespace {

constexpr auto kMain = ExifDirectoryId::main;

std::optional<int> OrientationOf(const ExifBlock& exif) {
  constexpr uint16_t kOrientation = 274;
  const auto value = exif.Number(kMain, kOrientation);
  if (!value || *value < 1 || *value > 8) return std::nullopt;
  return static_cast<int>(*value);
}

Resolution ResolutionOf(const ExifBlock& exif) {
  constexpr uint16_t kX = 282, kY = 283, kUnit = 296;
  constexpr uint32_t kInch = 2, kCentimeter = 3;
  constexpr double kCentimetersPerInch = 2.54;
  const std::vector<double> x = exif.Numbers(kMain, kX), y = exif.Numbers(kMain, kY);
  const uint32_t unit = exif.Number(kMain, kUnit).value_or(kInch);
  if (x.empty() || y.empty() || (unit != kInch && unit != kCentimeter)) return {};
  const double factor = unit == kCentimeter ? kCentimetersPerInch : 1;
  const Resolution stated{x[0] * factor, y[0] * factor};
  return stated.IsKnown() ? stated : Resolution{};
}

}  // namespace

uint32_t DotsPerMeter(double dotsPerInch) {
  constexpr double kMetersPerInch = 0.0254;
  if (!(dotsPerInch > 0)) return 0;
  return static_cast<uint32_t>(
      std::clamp(std::round(dotsPerInch / kMetersPerInch), 1.0, 2147483647.0));
}

void TakeStatedFacts(PictureHeader& header, const Resolution& resolution, const char* format) {
  StatedResolutions stated;
  stated.header = resolution;
  if (!header.metadata.exif.empty()) {
    const ExifBlock exif(header.metadata.exif);
    header.orientation = OrientationOf(exif);
    stated.exif = ResolutionOf(exif);
    if (exif.IsDamaged()) {
      header.warnings.push_back(std::string(format) + ": the EXIF block is damaged");
    }
  }
  header.metadata.resolution = ChooseResolution(stated);
}

}  // namespace rasterkit::detail
