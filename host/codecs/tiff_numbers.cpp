#include <cmath>
#include <cstring>
#include <limits>

#include <rasterkit/host/codecs/tiff_numbers.h>

namespace rasterkit::detail {

namespace {

template <typename T>
void UnpackWhole(const uint8_t* row, size_t count, double* numbers) {
  for (size_t i = 0; i < count; i++) {
    T value;
    std::memcpy(&value, row + i * sizeof value, sizeof value);
    numbers[i] = static_cast<double>(value);
  }
}

void UnpackHalves(const uint8_t* row, size_t count, double* numbers) {
  for (size_t i = 0; i < count; i++) {
    uint16_t half;
    std::memcpy(&half, row + 2 * i, sizeof half);
    numbers[i] = HalfToDouble(half);
  }
}

/// Two's complement of `bits` bits.
double Signed(uint32_t value, int bits) {
  const int unused = 32 - bits;
  return static_cast<int32_t>(value << unused) >> unused;
}

void Unpack24(const uint8_t* row, TiffNumber number, size_t count, double* numbers) {
  const uint16_t probe = 1;
  uint8_t lowFirst = 0;
  std::memcpy(&lowFirst, &probe, 1);
  for (size_t i = 0; i < count; i++, row += 3) {
    const uint32_t value = uint32_t{row[1]} << 8 | uint32_t{row[lowFirst ? 0 : 2]} |
                           uint32_t{row[lowFirst ? 2 : 0]} << 16;
    numbers[i] = number == TiffNumber::signedInteger ? Signed(value, 24) : value;
  }
}

void UnpackBits(const uint8_t* row, int bits, TiffNumber number, size_t count, double* numbers) {
  uint64_t pending = 0;
  int pendingBits = 0;
  for (size_t i = 0; i < count; i++) {
    for (; pendingBits < bits; pendingBits += 8) pending = pending << 8 | *row++;
    pendingBits -= bits;
    const auto value = static_cast<uint32_t>(pending >> pendingBits & ((uint64_t{1} << bits) - 1));
    numbers[i] = number == TiffNumber::signedInteger ? Signed(value, bits) : value;
  }
}

}  // namespace

double HalfToDouble(uint16_t half) {
  const int exponent = half >> 10 & 31;
  const int fraction = half & 1023;
  double value = 0;
  if (exponent == 0) {
    value = std::ldexp(fraction, -24);
  } else if (exponent < 31) {
    value = std::ldexp(1024 + fraction, exponent - 25);
  } else {
    value = fraction == 0 ? std::numeric_limits<double>::infinity()
                          : std::numeric_limits<double>::quiet_NaN();
  }
  return half & 0x8000 ? -value : value;
}

void UnpackNumbers(const uint8_t* row, int bits, TiffNumber number, size_t count, double* numbers) {
  const bool isSigned = number == TiffNumber::signedInteger;
  if (number == TiffNumber::floating) {
    if (bits == 16) return UnpackHalves(row, count, numbers);
    if (bits == 32) return UnpackWhole<float>(row, count, numbers);
    return UnpackWhole<double>(row, count, numbers);
  }
  switch (bits) {
    case 8:
      return isSigned ? UnpackWhole<int8_t>(row, count, numbers)
                      : UnpackWhole<uint8_t>(row, count, numbers);
    case 16:
      return isSigned ? UnpackWhole<int16_t>(row, count, numbers)
                      : UnpackWhole<uint16_t>(row, count, numbers);
    case 24:
      return Unpack24(row, number, count, numbers);
    case 32:
      return isSigned ? UnpackWhole<int32_t>(row, count, numbers)
                      : UnpackWhole<uint32_t>(row, count, numbers);
    case 64:
      return isSigned ? UnpackWhole<int64_t>(row, count, numbers)
                      : UnpackWhole<uint64_t>(row, count, numbers);
    default:
      return UnpackBits(row, bits, number, count, numbers);
  }
}

double FullScale(int bits, TiffNumber number) {
  if (number == TiffNumber::floating) return 1;
  return std::ldexp(1.0, number == TiffNumber::signedInteger ? bits - 1 : bits) - 1;
}

}  // namespace rasterkit::detail
