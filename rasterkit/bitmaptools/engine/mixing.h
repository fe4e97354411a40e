#pragma once

#include <cstdint>

#include <rasterkit/bitmaptools/pixels/clamp_to_byte.h>
#include <rasterkit/runtime/rounding.h>

/// Weights of brightness and of the mixing modes, and what they make of one channel. Factors are
/// singles, products and sums have at most 33 significant bits and so are exact in double.
namespace rasterkit::detail {

/// `Percent` / 100 + 1 as a single. Rounding to double first is harmless: a quotient by 100 that is
/// not itself halfway between two singles keeps a distance from all such that exceeds the error.
inline float BrightnessFactor(int32_t percent) {
  return static_cast<float>(percent / 100.0 + 1.0);
}

/// The factor less 1 as a single.
inline float BrightnessWeight(float factor) {
  return static_cast<float>(static_cast<double>(factor) - 1.0);
}

/// The source's share in a transparent mix.
inline float TransparentWeight(int32_t percent) {
  return static_cast<float>(1.0 - percent / 100.0);
}

/// What a color of this gray value gains in each channel.
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

/// Round(source * shade / 255): no product of two bytes is an odd multiple of 255 / 2, so there are
/// no halves to care for, and the quotient's precision does not matter.
inline uint8_t Shaded(uint8_t source, uint8_t shade) {
  return static_cast<uint8_t>((source * shade + 127) / 255);
}

}  // namespace rasterkit::detail
