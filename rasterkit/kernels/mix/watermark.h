#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Presses a row of a watermark into `width` pixels B G R, in place: `grays` holds their gray
/// values, `strengths` the watermark's (see watermark_factors.h). No row needs any alignment, and
/// nothing is touched beyond them.
void PressWatermark24(uint8_t* bgr, const uint8_t* grays, const uint8_t* strengths, size_t width);

}  // namespace rasterkit::kernels
