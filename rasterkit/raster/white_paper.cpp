#include <cstring>

#include <rasterkit/kernels/mix/blend_pixels.h>
#include <rasterkit/raster/white_paper.h>

namespace rasterkit {

void PutOnWhite(const uint8_t* bgra, size_t width, uint8_t* bgr) {
  std::memset(bgr, 255, 3 * width);
  kernels::Blend32Over24(bgra, width, {.constant = 255, .pixelAlpha = true}, bgr);
}

}  // namespace rasterkit
