#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <type_traits>

#include <fmt/format.h>

#include <rasterkit/codecs/number_keys.h>
#include <rasterkit/codecs/rows/no_data_number.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit::detail {
namespace {

/// A half in its two bytes.
struct Half {
  uint16_t bits = 0;
};

template <size_t bytes>
using Bits = std::conditional_t<
    bytes == 1, uint8_t,
    std::conditional_t<bytes == 2, uint16_t, std::conditional_t<bytes == 4, uint32_t, uint64_t>>>;

template <class T>
inline constexpr bool kIsFloating = std::is_floating_point_v<T> || std::is_same_v<T, Half>;

/// Calls `f(T())` with the type that stores the numbers.
template <class F>
decltype(auto) WithType(NumberType type, F f) {
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
uint64_t KeyOf(T number) {
  using Word = Bits<sizeof(T)>;
  constexpr auto kSign = static_cast<Word>(Word{1} << (8 * sizeof(T) - 1));
  const auto word = std::bit_cast<Word>(number);
  if constexpr (kIsFloating<T>) {
    return static_cast<Word>((word & kSign) != 0 ? ~word : word | kSign);
  } else {
    return static_cast<Word>(std::is_signed_v<T> ? word ^ kSign : word);
  }
}

template <class T>
T NumberOf(uint64_t key) {
  using Word = Bits<sizeof(T)>;
  constexpr auto kSign = static_cast<Word>(Word{1} << (8 * sizeof(T) - 1));
  auto word = static_cast<Word>(key);
  if constexpr (kIsFloating<T>) {
    word = static_cast<Word>((word & kSign) != 0 ? word ^ kSign : ~word);
  } else if constexpr (std::is_signed_v<T>) {
    word ^= kSign;
  }
  return std::bit_cast<T>(word);
}

constexpr uint16_t kInfiniteHalf = 0x7C00, kSignOfHalf = 0x8000;

template <class T>
KeyRange AllKeys() {
  if constexpr (std::is_same_v<T, Half>) {
    return {KeyOf(Half{kInfiniteHalf | kSignOfHalf}), KeyOf(Half{kInfiniteHalf})};
  } else if constexpr (std::is_floating_point_v<T>) {
    constexpr T kInfinity = std::numeric_limits<T>::infinity();
    return {KeyOf(-kInfinity), KeyOf(kInfinity)};
  } else {
    return {KeyOf(std::numeric_limits<T>::min()), KeyOf(std::numeric_limits<T>::max())};
  }
}

template <class T>
ExactNumber ExactOfNumber(T number) {
  if constexpr (std::is_same_v<T, Half>) {
    return ExactOf(HalfToDouble(number.bits));
  } else if constexpr (std::is_floating_point_v<T>) {
    return ExactOf(static_cast<double>(number));
  } else if constexpr (std::is_signed_v<T>) {
    return ExactOf(int64_t{number});
  } else {
    return ExactOf(uint64_t{number});
  }
}

/// Halves have no text of their own: that of the number as a double is short enough.
template <class T>
std::string TextOf(T number) {
  if constexpr (std::is_same_v<T, Half>) {
    return fmt::format("{}", HalfToDouble(number.bits));
  } else {
    return fmt::format("{}", number);
  }
}

template <class T>
KeyRange OneKey(T number) {
  return {KeyOf(number), KeyOf(number)};
}

/// Both zeros are one number.
template <class T>
KeyRange KeysOfFloating(double number) {
  if (number == 0) return {KeyOf(static_cast<T>(-0.0)), KeyOf(static_cast<T>(0.0))};
  const T nearest = static_cast<T>(number);
  const bool isSame =
      static_cast<double>(nearest) == number || (std::isinf(nearest) && std::isinf(number));
  return isSame ? OneKey(nearest) : KeyRange{};
}

/// The half nearest to the number, halves to even, and the next one in the direction of zero if
/// that lies on the other side of the number: some writers cut digits off.
KeyRange KeysOfHalf(double number) {
  constexpr double kFirstInfinite = 65520;
  if (number == 0) return {KeyOf(Half{kSignOfHalf}), KeyOf(Half{})};
  const KeyRange all = AllKeys<Half>();
  if (number >= kFirstInfinite) return {all.last, all.last};
  if (number <= -kFirstInfinite) return {all.first, all.first};
  uint64_t best = all.first + 1;
  const auto distance = [number](uint64_t key) {
    return std::abs(HalfToDouble(NumberOf<Half>(key).bits) - number);
  };
  for (uint64_t key = best; key < all.last; ++key) {
    const bool isEven = NumberOf<Half>(key).bits % 2 == 0;
    if (distance(key) < distance(best) || (distance(key) == distance(best) && isEven)) best = key;
  }
  const double nearest = HalfToDouble(NumberOf<Half>(best).bits);
  if (std::abs(nearest) <= std::abs(number)) return {best, best};
  return number > 0 ? KeyRange{best - 1, best} : KeyRange{best, best + 1};
}

template <class T>
KeyRange KeysOfWhole(double number) {
  // The greatest numbers of 64 bits are no doubles; their power of two is.
  const double end =
      std::ldexp(1.0, static_cast<int>(8 * sizeof(T)) - (std::is_signed_v<T> ? 1 : 0));
  const bool isHeld = number == std::trunc(number) && number < end &&
                      number >= static_cast<double>(std::numeric_limits<T>::min());
  return isHeld ? OneKey(static_cast<T>(number)) : KeyRange{};
}

/// The nearest float, as writers of float grids store the number; see NoDataNumber.
std::optional<double> NumberFor(NumberType type, const std::string& text, double number) {
  if (type != NumberType::float32 || std::isinf(number)) return number;
  const NoDataNumber known(text, type);
  constexpr double kLargest = std::numeric_limits<float>::max();
  if (std::abs(number) <= kLargest) return static_cast<double>(static_cast<float>(number));
  const double largest = std::copysign(kLargest, number);
  return known.Is(largest) ? std::optional(largest) : std::nullopt;
}

}  // namespace

void LoadKeys(NumberType type, const uint8_t* sample, size_t step, size_t count, uint64_t* keys) {
  WithType(type, [&](auto zero) {
    using T = decltype(zero);
    for (size_t i = 0; i < count; ++i, sample += step) {
      T number;
      std::memcpy(&number, sample, sizeof number);
      keys[i] = KeyOf(number);
    }
  });
}

int KeyBitsOf(NumberType type) {
  return static_cast<int>(8 * BytesOf(type));
}

KeyRange NumberKeys(NumberType type) {
  return WithType(type, [](auto zero) { return AllKeys<decltype(zero)>(); });
}

KeyRange FiniteKeys(NumberType type) {
  KeyRange keys = NumberKeys(type);
  const bool isFloating =
      type == NumberType::float16 || type == NumberType::float32 || type == NumberType::float64;
  if (isFloating) ++keys.first, --keys.last;
  return keys;
}

uint64_t KeyOfDouble(double number) {
  return KeyOf(number);
}

ExactNumber NumberOfKey(NumberType type, uint64_t key) {
  return WithType(type, [&](auto zero) { return ExactOfNumber(NumberOf<decltype(zero)>(key)); });
}

std::string TextOfKey(NumberType type, uint64_t key) {
  return WithType(type, [&](auto zero) { return TextOf(NumberOf<decltype(zero)>(key)); });
}

MissingKeys MissingKeysOf(const std::string& text, NumberType type) {
  MissingKeys missing;
  const char* const end = text.data() + text.size();
  const auto isRead = [&](const std::from_chars_result& result) {
    return result.ec == std::errc() && result.ptr == end;
  };
  double number = 0;
  if (!isRead(std::from_chars(text.data(), end, number))) return missing;
  missing.isKnown = true;
  missing.isNan = std::isnan(number);
  if (missing.isNan) return missing;
  const std::optional<double> stored = NumberFor(type, text, number);
  if (!stored) return missing;
  missing.keys = WithType(type, [&](auto zero) {
    using T = decltype(zero);
    if constexpr (std::is_same_v<T, Half>) {
      return KeysOfHalf(*stored);
    } else if constexpr (std::is_floating_point_v<T>) {
      return KeysOfFloating<T>(*stored);
    } else {
      T whole{};
      const bool isExact = isRead(std::from_chars(text.data(), end, whole));
      return isExact ? OneKey(whole) : KeysOfWhole<T>(*stored);
    }
  });
  return missing;
}

}  // namespace rasterkit::detail
