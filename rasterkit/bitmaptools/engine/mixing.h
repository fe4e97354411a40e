#pragma once

#include <cstdint>

#include <rasterkit/bitmaptools/pixels/clamp_to_byte.h>
#include <rasterkit/runtime/rounding.h>

/// Weights of brightness and of the mixing modes, and their effect on one channel. Factors are in
/// single precision; products and sums have at most 33 significant bits, so they are exact in
/// double.
namespace rasterkit::detail {

/// `percent` / 100 + 1 in single precision. Rounding to double first is harmless: a quotient by 100
/// that is not halfway between two singles is farther from all halfway points than the error.
inline float BrightnessFactor(int32_t percent) {
  return static_cast<float>(percent / 100.0 + 1.0);
}

/// The factor minus 1 in single precision.
inline float BrightnessWeight(float factor) {
  return static_cast<float>(static_cast<double>(factor) - 1.0);
}

/// Weight of the source in a transparent mix.
inline float TransparentWeight(int32_t percent) {
  return static_cast<float>(1.0 - percent / 100.0);
}

/// Gain of each channel of a color with this gray value.
inline int64_t BrightnessGain(uint8_t gray, float weight) {
  return Trunc((255 - gray) * static_cast<double>(weight));
}

inline uint8_t Brightened(uint8_t channel, float factor, int64_t gain) {
  return ClampToByte(
      static_cast<float>(channel * static_cast<double>(factor) + static_cast<double>(gain)));
}

/// A channel of the target's part in a transparent mix; the low byte of the sum counts.
inline uint8_t TransparentKept(uint8_t target, float weight) {
  return static_cast<uint8_t>(Trunc((1.0 - static_cast<double>(weight)) * target));
}

inline uint8_t TransparentAdded(uint8_t source, float weight) {
  return static_cast<uint8_t>(Round(source * static_cast<double>(weight)));
}

/// Round(source * shade / 255). No product of two bytes is an odd multiple of 255 / 2, so there are
/// no halves, and the precision of the quotient does not matter.
inline uint8_t Shaded(uint8_t source, uint8_t shade) {
  return static_cast<uint8_t>((source * shade + 127) / 255);
}

}  // namespace rasterkit::detail
