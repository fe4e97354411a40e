#include <cmath>

#include <rasterkit/metadata/metadata.h>

namespace rasterkit {
namespace {

/// Half a unit, and the last digits of fractions.
constexpr double kWholeRounding = 0.5 + 1e-6;

bool AgreesWithin(const Resolution& a, const Resolution& b, double rounding) {
  return std::abs(a.x - b.x) <= rounding && std::abs(a.y - b.y) <= rounding;
}

double WholeDpi(uint32_t dotsPerMeter) {
  constexpr double kInchesPerMeter = 1 / 0.0254, kHalfUnit = 0.5;
  const double dpi = dotsPerMeter / kInchesPerMeter;
  const double whole = std::round(dpi);
  const bool isWhole = whole >= 1 && std::abs(whole * kInchesPerMeter - dotsPerMeter) <= kHalfUnit;
  return isWhole ? whole : dpi;
}

}  // namespace

Resolution ChooseResolution(const StatedResolutions& stated) {
  const bool isRounded =
      stated.headerIsWhole && stated.exif.IsKnown() &&
      AgreesWithin(stated.header, stated.exif, kWholeRounding * stated.headerUnit);
  if (stated.header.IsKnown() && !isRounded) return stated.header;
  if (stated.exif.IsKnown()) return stated.exif;
  return stated.photoshop;
}

Resolution FromDotsPerMeter(uint32_t x, uint32_t y) {
  if (x == 0 || y == 0) return {};
  return {WholeDpi(x), WholeDpi(y)};
}

}  // namespace rasterkit
