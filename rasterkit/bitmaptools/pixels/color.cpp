#include <rasterkit/bitmaptools/pixels/clamp_to_byte.h>
#include <rasterkit/bitmaptools/pixels/color.h>
#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/runtime/rounding.h>

namespace rasterkit {
namespace {

/// Applies `change` to each channel.
template <class Change>
TColor ForEachChannel(TColor color, Change change) {
  uint8_t red, green, blue;
  GetRGB(color, red, green, blue);
  return RGB(change(red), change(green), change(blue));
}

/// The factor is negative below -100 percent; the low byte of the product is kept then too.
TColor Darken(TColor color, float factor) {
  return ForEachChannel(color, [factor](uint8_t channel) {
    return static_cast<uint8_t>(Round(channel * static_cast<double>(factor)));
  });
}

TColor Brighten(TColor color, float factor) {
  const double rise = factor - 1.0f;
  const auto lift = static_cast<double>(Trunc((255 - GrayValue(color)) * rise));
  return ForEachChannel(color, [factor, lift](uint8_t channel) {
    // Product and sum have at most 33 significant bits: exact in double, rounded once to single.
    return detail::ClampToByte(static_cast<float>(channel * static_cast<double>(factor) + lift));
  });
}

}  // namespace

void GetRGB(TColor color, uint8_t& red, uint8_t& green, uint8_t& blue) {
  const uint32_t channels = color < 0 ? 0u : static_cast<uint32_t>(color);
  red = static_cast<uint8_t>(channels);
  green = static_cast<uint8_t>(channels >> 8);
  blue = static_cast<uint8_t>(channels >> 16);
}

uint8_t GrayValue(uint8_t red, uint8_t green, uint8_t blue) {
  return kernels::GrayOf(red, green, blue);
}

uint8_t GrayValue(TColor color) {
  uint8_t red, green, blue;
  GetRGB(color, red, green, blue);
  return GrayValue(red, green, blue);
}

TColor ColorBrightness(TColor color, int32_t percent) {
  // Rounding to double first is harmless: a quotient by 100 that is not halfway between two
  // single-precision numbers is much farther from every halfway point than the error of double.
  const auto factor = static_cast<float>(1.0 + percent / 100.0);
  return percent < 0 ? Darken(color, factor) : Brighten(color, factor);
}

TColor ComplementColor(TColor color) {
  return ForEachChannel(color, [](uint8_t channel) { return static_cast<uint8_t>(255 - channel); });
}

}  // namespace rasterkit
