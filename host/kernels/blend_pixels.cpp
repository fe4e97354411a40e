#include <rasterkit/host/kernels/blend_pixels.h>

namespace rasterkit::kernels {
namespace {

template <size_t kTargetBytes>
void BlendOneByOne(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  for (size_t x = 0; x < width; ++x, source += 4, target += kTargetBytes) {
    const unsigned weight = (opacity.pixelAlpha ? source[3] : 255u) * opacity.constant;
    for (size_t c = 0; c < 3; ++c) target[c] = BlendChannel(source[c], target[c], weight);
    if constexpr (kTargetBytes == 4) target[3] = BlendChannel(255, target[3], weight);
  }
}

}  // namespace

void Blend32Over24(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  BlendOneByOne<3>(source, width, opacity, target);
}

void Blend32Over32(const uint8_t* source, size_t width, Opacity opacity, uint8_t* target) {
  BlendOneByOne<4>(source, width, opacity, target);
}

}  // namespace rasterkit::kernels
