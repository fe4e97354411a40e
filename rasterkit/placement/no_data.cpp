#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include <rasterkit/placement/no_data.h>
#include <rasterkit/runtime/half.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0, kTwoTo64 = 2 * kTwoTo63;

/// The float that a writer of float pictures stores for the number. The decimal text of the largest
/// float is often rounded up slightly.
std::optional<double> NearestFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  constexpr double kTolerance = 1e-6;
  if (!std::isfinite(value)) return value;
  if (std::abs(value) <= kLargest) return static_cast<double>(static_cast<float>(value));
  if (std::abs(value) > kLargest * (1 + kTolerance)) return std::nullopt;
  return std::copysign(kLargest, value);
}

bool IsFloat(NumberType type) {
  return type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
}

template <class T>
bool Holds(int64_t value) {
  return value >= int64_t{std::numeric_limits<T>::min()} &&
         value <= int64_t{std::numeric_limits<T>::max()};
}

bool Holds(NumberType type, int64_t value) {
  switch (type) {
    case NumberType::uint8:
      return Holds<uint8_t>(value);
    case NumberType::int8:
      return Holds<int8_t>(value);
    case NumberType::uint16:
      return Holds<uint16_t>(value);
    case NumberType::int16:
      return Holds<int16_t>(value);
    case NumberType::uint32:
      return Holds<uint32_t>(value);
    case NumberType::int32:
      return Holds<int32_t>(value);
    case NumberType::uint64:
      return value >= 0;
    default:
      return true;
  }
}

template <class T>
bool ParseWhole(const std::string& text, T& value) {
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && rest == text.data() + text.size();
}

std::optional<uint16_t> HalfOf(double value) {
  constexpr uint16_t kFirstNan = 0x7C01;
  for (uint16_t half = 0; half < kFirstNan; ++half) {
    if (HalfToDouble(half) != std::abs(value)) continue;
    return static_cast<uint16_t>(std::signbit(value) ? half | 0x8000 : half);
  }
  return std::nullopt;
}

template <class T>
std::vector<uint8_t> BytesOfValue(T value) {
  std::vector<uint8_t> bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

}  // namespace

NoData::NoData(const std::string& text, NumberType type) : type_(type) {
  std::string word = Trim(text);
  if (word.starts_with('+') && !word.starts_with("+-")) word.erase(0, 1);
  if (word.empty()) return;
  double value = 0;
  const auto [rest, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  isUnreadable_ = error != std::errc() || rest != word.data() + word.size();
  if (isUnreadable_) return;
  isNan_ = std::isnan(value) && IsFloat(type);
  if (isNan_) return;
  if (!IsFloat(type)) {
    SetWhole(word, value);
  } else if (type != NumberType::float32) {
    value_ = value;
  } else if (const std::optional<double> nearest = NearestFloat(value)) {
    value_ = *nearest;
  }
}

/// `value` is the number of the text, rounded.
void NoData::SetWhole(const std::string& text, double value) {
  int64_t whole = 0;
  uint64_t large = 0;
  if (!ParseWhole(text, whole)) {
    if (type_ == NumberType::uint64 && ParseWhole(text, large)) {
      value_ = large;
      return;
    }
    // "255.0" and "1e3".
    if (!(std::floor(value) == value) || value < -kTwoTo63 || value >= kTwoTo64) return;
    if (value >= kTwoTo63) {
      if (type_ == NumberType::uint64) value_ = static_cast<uint64_t>(value);
      return;
    }
    whole = static_cast<int64_t>(value);
  }
  if (Holds(type_, whole)) value_ = whole;
}

bool NoData::IsNumber(double value) const {
  if (value != value) return isNan_;
  if (const auto* number = std::get_if<double>(&value_)) return value == *number;
  if (std::floor(value) != value) return false;
  if (value >= -kTwoTo63 && value < kTwoTo63) return IsSigned(static_cast<int64_t>(value));
  return value >= kTwoTo63 && value < kTwoTo64 && IsUnsigned(static_cast<uint64_t>(value));
}

bool NoData::IsSigned(int64_t value) const {
  if (const auto* whole = std::get_if<int64_t>(&value_)) return value == *whole;
  if (const auto* large = std::get_if<uint64_t>(&value_)) {
    return value >= 0 && static_cast<uint64_t>(value) == *large;
  }
  const auto* number = std::get_if<double>(&value_);
  return number != nullptr && *number >= -kTwoTo63 && *number < kTwoTo63 &&
         std::floor(*number) == *number && value == static_cast<int64_t>(*number);
}

bool NoData::IsUnsigned(uint64_t value) const {
  if (value <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) {
    return IsSigned(static_cast<int64_t>(value));
  }
  if (const auto* large = std::get_if<uint64_t>(&value_)) return value == *large;
  const auto* number = std::get_if<double>(&value_);
  return number != nullptr && *number >= kTwoTo63 && *number < kTwoTo64 &&
         value == static_cast<uint64_t>(*number);
}

std::optional<std::vector<uint8_t>> NoData::Sample() const {
  if (!Occurs()) return std::nullopt;
  if (const auto* large = std::get_if<uint64_t>(&value_)) return BytesOfValue(*large);
  if (const auto* whole = std::get_if<int64_t>(&value_)) {
    switch (BytesOf(type_)) {
      case 1:
        return BytesOfValue(static_cast<uint8_t>(*whole));
      case 2:
        return BytesOfValue(static_cast<uint16_t>(*whole));
      case 4:
        return BytesOfValue(static_cast<uint32_t>(*whole));
      default:
        return BytesOfValue(*whole);
    }
  }
  const double number =
      isNan_ ? std::numeric_limits<double>::quiet_NaN() : std::get<double>(value_);
  if (type_ == NumberType::float64) return BytesOfValue(number);
  if (type_ == NumberType::float32) return BytesOfValue(static_cast<float>(number));
  constexpr uint16_t kHalfNan = 0x7E00;
  const std::optional<uint16_t> half = isNan_ ? kHalfNan : HalfOf(number);
  return half ? std::optional(BytesOfValue(*half)) : std::nullopt;
}

}  // namespace rasterkit
