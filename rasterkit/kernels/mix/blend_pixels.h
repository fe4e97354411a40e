#pragma once

#include <cstddef>
#include <cstdint>

/// Mixing rows of pixels into existing rows. A source pixel's opacity a is
/// alpha * constant / (255 * 255), or constant / 255 where its own alpha does not count; each
/// channel becomes round(s a + t (1 - a)) in whole numbers, and the alpha of a 32-bit target
/// round(255 a + t (1 - a)). Source and target must not overlap; exactly the bytes of `width`
/// target pixels are written.
namespace rasterkit::kernels {

struct Opacity {
  uint8_t constant = 255;
  bool pixelAlpha = false;
};

/// B G R A over B G R.
void Blend32Over24(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target);

/// B G R A over B G R A.
void Blend32Over32(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target);

/// One channel, for callers with single pixels; `weight` is alpha * constant.
constexpr uint8_t BlendChannel(unsigned source, unsigned target, unsigned weight) {
  constexpr unsigned kWhole = 255 * 255;
  return static_cast<uint8_t>((source * weight + target * (kWhole - weight) + kWhole / 2) / kWhole);
}

}  // namespace rasterkit::kernels
