#include <bit>
#include <cmath>
#include <cstring>

#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/runtime/float24.h>
#include <rasterkit/runtime/half.h>

namespace rasterkit::detail {

namespace {

/// The place of the low byte of three.
constexpr int kLow = std::endian::native == std::endian::little ? 0 : 2;

/// Visits the samples of a range that are whole bytes.
template <typename Read>
void ForEachSample(const uint8_t* row, size_t bytes, const TiffSampleRange& range, double* numbers,
                   size_t targetStep, const Read& read) {
  const uint8_t* sample = row + range.first * bytes;
  for (size_t i = 0; i < range.count; i++, sample += range.step * bytes, numbers += targetStep) {
    *numbers = read(sample);
  }
}

template <typename T>
double Whole(const uint8_t* sample) {
  T value;
  std::memcpy(&value, sample, sizeof value);
  return static_cast<double>(value);
}

double Half(const uint8_t* sample) {
  uint16_t half;
  std::memcpy(&half, sample, sizeof half);
  return HalfToDouble(half);
}

/// Reads two's complement of `bits` bits.
double Signed(uint32_t value, int bits) {
  const int unused = 32 - bits;
  return static_cast<int32_t>(value << unused) >> unused;
}

double Float24(const uint8_t* sample) {
  return Float24ToFloat(LoadTriple(sample));
}

/// Reads `bits` bits from a bit of the row on, the high bit first.
uint32_t BitsAt(const uint8_t* row, size_t bit, int bits) {
  uint64_t value = 0;
  const size_t end = bit + static_cast<size_t>(bits);
  for (size_t byte = bit / 8; byte * 8 < end; byte++) value = value << 8 | row[byte];
  value >>= (8 - end % 8) % 8;
  return static_cast<uint32_t>(value & ((uint64_t{1} << bits) - 1));
}

}  // namespace

void UnpackNumbers(const uint8_t* row, int bits, TiffNumber number, const TiffSampleRange& range,
                   double* numbers, size_t targetStep) {
  const bool isSigned = number == TiffNumber::signedInteger;
  const auto unpack = [&](size_t bytes, const auto& read) {
    ForEachSample(row, bytes, range, numbers, targetStep, read);
  };
  if (number == TiffNumber::floating) {
    if (bits == 16) return unpack(2, Half);
    if (bits == 24) return unpack(3, Float24);
    if (bits == 32) return unpack(4, Whole<float>);
    return unpack(8, Whole<double>);
  }
  switch (bits) {
    case 8:
      return isSigned ? unpack(1, Whole<int8_t>) : unpack(1, Whole<uint8_t>);
    case 16:
      return isSigned ? unpack(2, Whole<int16_t>) : unpack(2, Whole<uint16_t>);
    case 32:
      return isSigned ? unpack(4, Whole<int32_t>) : unpack(4, Whole<uint32_t>);
    case 64:
      return isSigned ? unpack(8, Whole<int64_t>) : unpack(8, Whole<uint64_t>);
    default:
      break;
  }
  for (size_t i = 0; i < range.count; i++, numbers += targetStep) {
    const size_t sample = range.first + i * range.step;
    const uint32_t value = bits == 24 ? LoadTriple(row + sample * 3)
                                      : BitsAt(row, sample * static_cast<size_t>(bits), bits);
    *numbers = isSigned ? Signed(value, bits) : value;
  }
}

uint32_t LoadTriple(const uint8_t* bytes) {
  return uint32_t{bytes[1]} << 8 | uint32_t{bytes[kLow]} | uint32_t{bytes[2 - kLow]} << 16;
}

void StoreTriple(uint32_t value, uint8_t* bytes) {
  bytes[kLow] = static_cast<uint8_t>(value);
  bytes[1] = static_cast<uint8_t>(value >> 8);
  bytes[2 - kLow] = static_cast<uint8_t>(value >> 16);
}

double FullScale(int bits, TiffNumber number) {
  if (number == TiffNumber::floating) return 1;
  return std::ldexp(1.0, number == TiffNumber::signedInteger ? bits - 1 : bits) - 1;
}

}  // namespace rasterkit::detail
