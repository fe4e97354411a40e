#include <charconv>
#include <cmath>
#include <limits>

#include <rasterkit/codecs/rows/no_data_number.h>

namespace rasterkit::detail {
namespace {

/// The float that a writer of float grids stores for the number. The decimal text of the largest
/// float is often rounded up slightly.
std::optional<double> NearestFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  constexpr double kTolerance = 1e-6;
  if (std::abs(value) <= kLargest) return static_cast<double>(static_cast<float>(value));
  if (std::abs(value) > kLargest * (1 + kTolerance)) return std::nullopt;
  return std::copysign(kLargest, value);
}

}  // namespace

NoDataNumber::NoDataNumber(const std::string& text, NumberType type) {
  double value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || rest != text.data() + text.size()) return;
  isNan_ = std::isnan(value);
  if (isNan_) return;
  const bool isRounded = type == NumberType::float32 && std::isfinite(value);
  number_ = isRounded ? NearestFloat(value) : value;
}

}  // namespace rasterkit::detail
