#pragma once

#include <cmath>
#include <cstdint>

#include "tests/reference/color.h"
#include "tests/reference/extended.h"
#include "tests/reference/gray.h"

/// What contrast, brightness and the mixing modes make of a color, written straight from the
/// rules: extended intermediates, singles where a value is stored as single.
namespace rasterkit::reference {

struct Bgr {
  uint8_t b = 0, g = 0, r = 0;
};

inline int64_t TruncToZero(Extended x) {
  return static_cast<int64_t>(x);
}

/// `Percent / 100 + 1`, stored as single.
inline float FactorOf(int32_t percent) {
  return static_cast<float>(Extended(percent) / 100 + 1);
}

inline float FactorMinusOne(float factor) {
  return static_cast<float>(Extended(factor) - 1);
}

inline uint8_t ContrastOf(uint8_t channel, int32_t value) {
  const float factor = FactorOf(value);
  const int64_t v = RoundEven((channel - 128) * Extended(factor)) + 128;
  if (v > 255) return 255;
  if (v < 0) return 0;
  return static_cast<uint8_t>(v);
}

inline bool IsNotBlackOrWhite(uint8_t r, uint8_t g, uint8_t b) {
  if (r >= 254 && g == 255 && b == 255) return false;
  if (r == 0 && g == 0 && b == 0) return false;
  return true;
}

/// channel * factor + add as a single, rounded and cut.
inline uint8_t Lifted(uint8_t channel, float factor, int64_t add) {
  return ClampToByte(static_cast<float>(channel * Extended(factor) + add));
}

/// For percentages from -100 to 100 but 0.
inline Bgr BrightnessOf(Bgr color, int32_t value) {
  const float factor = FactorOf(value);
  const float weight = FactorMinusOne(factor);
  if (value < 0) {
    for (uint8_t* channel : {&color.b, &color.g, &color.r})
      *channel = static_cast<uint8_t>(RoundEven(*channel * Extended(factor)));
    return color;
  }
  const int gray = GrayInWholeNumbers(color.r, color.g, color.b);
  const int64_t add = TruncToZero((255 - gray) * Extended(weight));
  for (uint8_t* channel : {&color.b, &color.g, &color.r}) *channel = Lifted(*channel, factor, add);
  return color;
}

/// The weights that a transfer mode stores.
struct TransparentWeights {
  float f;
};
inline TransparentWeights TransparentWeightsOf(int32_t percent) {
  return {static_cast<float>(1 - Extended(percent) / 100)};
}

inline uint8_t MixTransparent(uint8_t target, uint8_t source, float f) {
  const int64_t kept = TruncToZero((1 - Extended(f)) * target);
  const int64_t added = RoundEven(source * Extended(f));
  return static_cast<uint8_t>((kept + added) & 0xFF);
}

inline Bgr MixTransparent(Bgr t, Bgr s, int32_t percent, bool useGray) {
  const float f = TransparentWeightsOf(percent).f;
  const uint8_t gray = GrayInWholeNumbers(t.r, t.g, t.b);
  return {MixTransparent(useGray ? gray : t.b, s.b, f),
          MixTransparent(useGray ? gray : t.g, s.g, f),
          MixTransparent(useGray ? gray : t.r, s.r, f)};
}

/// Round(source * (shade / 255)), the quotient in extended precision or stored as single.
inline uint8_t Shaded(uint8_t source, uint8_t shade, bool quotientIsSingle) {
  const Extended quotient = Extended(shade) / 255;
  const Extended k = quotientIsSingle ? Extended(static_cast<float>(quotient)) : quotient;
  return static_cast<uint8_t>(RoundEven(source * k));
}

inline Bgr MixShadow(Bgr t, Bgr s, int32_t percent, bool useGray) {
  const float fproz = FactorOf(percent);
  const float f = FactorMinusOne(fproz);
  const uint8_t gray = GrayInWholeNumbers(t.r, t.g, t.b);
  const int64_t add = TruncToZero((255 - gray) * Extended(f));
  if (useGray) {
    const uint8_t shade = Lifted(gray, fproz, add);
    return {Shaded(s.b, shade, true), Shaded(s.g, shade, true), Shaded(s.r, shade, true)};
  }
  return {Shaded(s.b, Lifted(t.b, fproz, add), false), Shaded(s.g, Lifted(t.g, fproz, add), false),
          Shaded(s.r, Lifted(t.r, fproz, add), false)};
}

}  // namespace rasterkit::reference
