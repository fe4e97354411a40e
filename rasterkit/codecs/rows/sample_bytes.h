#pragma once

#include <algorithm>
#include <cstdint>

/// Samples of 8 and 16 bits as bytes.
namespace rasterkit::detail {

/// Scales a sample to 8 bits, rounded.
inline uint8_t ToByte(uint8_t value) {
  return value;
}
inline uint8_t ToByte(uint16_t value) {
  return static_cast<uint8_t>((value * 255u + 32895u) >> 16);
}

/// Divides alpha out of a premultiplied color. With alpha 0 the color stays.
template <typename T>
uint8_t Unmultiplied(T color, T alpha) {
  if (alpha == 0) return ToByte(color);
  const uint32_t value = (color * uint32_t{255} + alpha / 2u) / alpha;
  return static_cast<uint8_t>(std::min(value, 255u));
}

}  // namespace rasterkit::detail
