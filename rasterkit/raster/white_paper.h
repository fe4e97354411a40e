#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Composes a row of 32-bit pixels B G R A with straight alpha over white and writes it as 24-bit
/// pixels B G R: each channel becomes round(s a + 255 (1 - a)) in whole numbers, as
/// TCanvas::AlphaBlend does. Exactly `3 * width` bytes are written; the rows must not overlap.
RASTERKIT_EXPORT void PutOnWhite(const uint8_t* bgra, size_t width, uint8_t* bgr);

}  // namespace rasterkit
