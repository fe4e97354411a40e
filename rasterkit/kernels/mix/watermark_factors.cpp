#include <cmath>
#include <numeric>
#include <vector>

#include <rasterkit/kernels/mix/watermark_factors.h>

namespace rasterkit::kernels {
namespace {

constexpr uint32_t kOne = 1u << 24;
constexpr int kRows = 256 - kFirstLightGray + 1;

uint32_t DarkFactor(int strength) {
  return static_cast<uint32_t>(std::lround(strength * double{kOne} / 255));
}

// The exact share is this numerator over 130050, and a channel's share of it lies halfway between
// two whole numbers exactly where channel * numerator is an odd multiple of 65025.
constexpr int kDenominator = 2 * 255 * 255;
int LightNumerator(int gray, int strength) {
  return (2 * gray - 255) * (255 - strength) + 510 * strength;
}
bool MeetsHalves(int numerator) {
  return kDenominator / 2 / std::gcd(kDenominator / 2, numerator) <= 255;
}

// A single from one half on is a whole number of units of 2^-24, and the product is what the rule
// says. A smaller one has more digits; rounding them away moves no product across a half, since
// none comes nearer to one than 1 / 130050, but for those whose exact value lies on it: these
// follow the side on which the single lies.
uint32_t LightFactor(int gray, int strength) {
  const int numerator = LightNumerator(gray, strength);
  const auto share =
      static_cast<float>(((gray / 255.0 - 0.5) * (255 - strength) + strength) / 255.0);
  const double units = double{share} * kOne;
  const double nearest = std::nearbyint(units);
  if (nearest == units || !MeetsHalves(numerator)) return static_cast<uint32_t>(nearest);
  const bool isBelow = double{share} * kDenominator < numerator;
  return static_cast<uint32_t>(isBelow ? std::floor(units) : std::ceil(units));
}

uint32_t Factor(int row, int strength) {
  if (strength >= kFirstHarmlessStrength) return kOne;
  return row == 0 ? DarkFactor(strength) : LightFactor(kFirstLightGray + row - 1, strength);
}

std::vector<uint32_t> MakeFactors() {
  std::vector<uint32_t> factors;
  factors.reserve(size_t{kRows} * kWatermarkStrengths);
  for (int row = 0; row < kRows; ++row) {
    for (int strength = 0; strength < kWatermarkStrengths; ++strength) {
      factors.push_back(Factor(row, strength));
    }
  }
  return factors;
}

}  // namespace

const uint32_t* WatermarkFactors() {
  static const std::vector<uint32_t> factors = MakeFactors();
  return factors.data();
}

}  // namespace rasterkit::kernels
