#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "tests/support/tiff_file.h"

/// Colors of the pixels of a TIFF file, one by one, straight from the meaning of its tags.
namespace rasterkit::reference {

/// Tags that define the meaning of a pixel's numbers.
struct TiffMeaning {
  uint16_t bits = 8, sampleFormat = 1, photometric = 1;
  std::vector<uint16_t> extraSamples;
  std::vector<uint16_t> colorMap;
};

inline TiffMeaning MeaningOf(const test::TiffFile& file) {
  return {file.bits, file.sampleFormat, file.photometric, file.extraSamples, file.colorMap};
}

inline long double HalfValue(uint16_t half) {
  const int exponent = (half >> 10) & 31, fraction = half & 1023;
  const long double sign = half & 0x8000 ? -1 : 1;
  if (exponent == 0) return sign * fraction / 16777216.0L;
  if (exponent == 31) return fraction ? NAN : sign * INFINITY;
  return sign * std::ldexp(1.0L + fraction / 1024.0L, exponent - 15);
}

/// 1 bit sign, 7 exponent, 16 fraction.
inline long double Float24Value(uint32_t bits) {
  const int exponent = (bits >> 16) & 127, fraction = bits & 65535;
  const long double sign = bits & 0x800000 ? -1 : 1;
  if (exponent == 0) return sign * std::ldexp(fraction / 65536.0L, -62);
  if (exponent == 127) return fraction ? NAN : sign * INFINITY;
  return sign * std::ldexp(1.0L + fraction / 65536.0L, exponent - 63);
}

/// A sample as a number.
inline long double TiffNumber(const test::TiffFile& file, uint32_t x, uint32_t y, uint32_t sample) {
  const uint64_t stored = test::StoredSample(file, x, y, sample);
  if (file.sampleFormat == SAMPLEFORMAT_IEEEFP) {
    if (file.bits == 16) return HalfValue(static_cast<uint16_t>(stored));
    if (file.bits == 24) return Float24Value(static_cast<uint32_t>(stored));
    if (file.bits == 32) return std::bit_cast<float>(static_cast<uint32_t>(stored));
    return std::bit_cast<double>(stored);
  }
  if (file.sampleFormat == SAMPLEFORMAT_INT && (stored >> (file.bits - 1) & 1))
    return static_cast<long double>(stored) - std::ldexp(1.0L, file.bits);
  return static_cast<long double>(stored);
}

/// A number as its share of full scale, 0 to 1.
inline long double TiffShare(const TiffMeaning& meaning, long double number) {
  const bool isSigned = meaning.sampleFormat == SAMPLEFORMAT_INT;
  const long double full = meaning.sampleFormat == SAMPLEFORMAT_IEEEFP
                               ? 1.0L
                               : std::ldexp(1.0L, isSigned ? meaning.bits - 1 : meaning.bits) - 1;
  return std::clamp(number / full, 0.0L, 1.0L);
}

inline uint8_t TiffByte(long double share) {
  return static_cast<uint8_t>(std::floor(share * 255 + 0.5L));
}

/// B, G, R, A of a pixel of gray, RGB, inks or a palette; alpha 255 without an alpha sample.
/// `number` tells the value of each of its samples.
template <typename Number>
std::array<uint8_t, 4> TiffPixel(const TiffMeaning& meaning, const Number& number) {
  const auto share = [&](uint32_t sample) { return TiffShare(meaning, number(sample)); };
  std::array<long double, 3> rgb{};
  uint32_t colors = 3;
  switch (meaning.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK: {
      const long double gray = share(0);
      rgb.fill(meaning.photometric == PHOTOMETRIC_MINISWHITE ? 1 - gray : gray);
      colors = 1;
      break;
    }
    case PHOTOMETRIC_PALETTE: {
      const auto index = static_cast<size_t>(number(0));
      for (size_t i = 0; i < 3; i++)
        rgb[i] = (meaning.colorMap[i * meaning.colorMap.size() / 3 + index] >> 8) / 255.0L;
      colors = 1;
      break;
    }
    case PHOTOMETRIC_SEPARATED:
      for (uint32_t i = 0; i < 3; i++) rgb[i] = (1 - share(i)) * (1 - share(3));
      colors = 4;
      break;
    default:
      for (uint32_t i = 0; i < 3; i++) rgb[i] = share(i);
  }
  long double alpha = 1;
  for (uint32_t i = 0; i < meaning.extraSamples.size(); i++) {
    if (meaning.extraSamples[i] == EXTRASAMPLE_UNSPECIFIED) continue;
    alpha = share(colors + i);
    const bool isMultiplied = meaning.extraSamples[i] == EXTRASAMPLE_ASSOCALPHA && alpha > 0;
    for (uint32_t c = 0; isMultiplied && c < 3; c++) {
      // Sample over sample, so that a half stays one.
      const long double color = number(colors == 1 ? 0 : c);
      const long double byte = std::floor(color * 255 / number(colors + i) + 0.5L);
      rgb[c] = std::clamp(byte, 0.0L, 255.0L) / 255;
    }
    break;
  }
  return {TiffByte(rgb[2]), TiffByte(rgb[1]), TiffByte(rgb[0]), TiffByte(alpha)};
}

inline std::array<uint8_t, 4> TiffPixel(const test::TiffFile& file, uint32_t x, uint32_t y) {
  return TiffPixel(MeaningOf(file),
                   [&](uint32_t sample) { return TiffNumber(file, x, y, sample); });
}

}  // namespace rasterkit::reference
