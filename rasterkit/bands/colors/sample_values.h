#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

#include <rasterkit/raster/number_type.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/half.h>

/// Numbers of samples, one at a time.
namespace rasterkit::detail {

/// A 16-bit floating-point number as it is stored.
struct Half {
  uint16_t bits = 0;
};

/// The half nearest to a number, halves to even; infinite from 65520 on.
RASTERKIT_EXPORT uint16_t HalfOf(double value);

/// Calls `f(T())` with the type that stores numbers of `type`.
template <class F>
decltype(auto) WithNumberType(NumberType type, F f) {
  switch (type) {
    case NumberType::uint8:
      return f(uint8_t());
    case NumberType::int8:
      return f(int8_t());
    case NumberType::uint16:
      return f(uint16_t());
    case NumberType::int16:
      return f(int16_t());
    case NumberType::uint32:
      return f(uint32_t());
    case NumberType::int32:
      return f(int32_t());
    case NumberType::uint64:
      return f(uint64_t());
    case NumberType::int64:
      return f(int64_t());
    case NumberType::float16:
      return f(Half());
    case NumberType::float32:
      return f(float());
    default:
      return f(double());
  }
}

template <class T>
double ValueOf(T number) {
  if constexpr (std::is_same_v<T, Half>) {
    return HalfToDouble(number.bits);
  } else {
    return static_cast<double>(number);
  }
}

/// The nearest number of the type: whole numbers are rounded, halves up, and clamped; NaN becomes 0
/// there.
template <class T>
T NumberOf(double value) {
  if constexpr (std::is_same_v<T, Half>) {
    return {HalfOf(value)};
  } else if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value);
  } else {
    const double rounded = std::floor(value + 0.5);
    if (!(rounded > static_cast<double>(std::numeric_limits<T>::min()))) {
      return value != value ? T{0} : std::numeric_limits<T>::min();
    }
    // The largest 64-bit numbers are no doubles; their power of two is.
    if (rounded >= static_cast<double>(std::numeric_limits<T>::max())) {
      return std::numeric_limits<T>::max();
    }
    return static_cast<T>(rounded);
  }
}

/// The half nearest to a number in the direction of zero: some writers cut digits off.
inline Half HalfTowardZero(double value) {
  Half half{HalfOf(value)};
  constexpr double kEnd = 65536;
  const bool isLarger = std::abs(HalfToDouble(half.bits)) > std::abs(value);
  // The next number of less magnitude; from the end on all are infinite.
  if (isLarger && std::abs(value) < kEnd) --half.bits;
  return half;
}

/// The number that means "not measured", as a picture of one type holds it. Halves are so coarse
/// that the number of a file is often none of them: the nearest one and the one next to it in the
/// direction of zero mean it then.
template <class T>
class MissingNumber {
 public:
  explicit MissingNumber(std::optional<double> noData) {
    if (!noData) return;
    isNan_ = *noData != *noData;
    number_ = NumberOf<T>(*noData);
    nearest_ = number_;
    if constexpr (std::is_same_v<T, Half>) {
      if (!isNan_) number_ = HalfTowardZero(*noData);
    }
    // A float grid holds the float nearest to the text; a whole number that the type cannot hold
    // never occurs.
    exists_ = !std::is_integral_v<T> || ValueOf(number_) == *noData;
  }
  bool Exists() const { return exists_; }
  T Number() const { return number_; }
  bool Is(T number) const {
    if (!exists_) return false;
    if constexpr (std::is_integral_v<T>) return number == number_;
    const double value = ValueOf(number);
    if (isNan_) return value != value;
    return value == ValueOf(number_) || value == ValueOf(nearest_);
  }

 private:
  bool exists_ = false, isNan_ = false;
  T number_{}, nearest_{};
};

template <class T>
T LoadNumber(const uint8_t* bytes) {
  T number;
  std::memcpy(&number, bytes, sizeof number);
  return number;
}

}  // namespace rasterkit::detail
