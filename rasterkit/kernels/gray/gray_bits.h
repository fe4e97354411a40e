#pragma once

#include <cstddef>
#include <cstdint>

/// Black and white by the gray value: rows of colors to rows of bits, the first pixel in bit 7.
/// Ones are the pixels whose gray is `level` or more (any number: none beyond 255, all at 0 and
/// less); the bits after the last pixel are ones too. Source and target must not overlap; exactly
/// (width + 7) / 8 bytes are written.
namespace rasterkit::kernels {

/// From pixels B G R.
void GrayBits24(const uint8_t* bgr, size_t width, int level, uint8_t* bits);

/// From pixels B G R A; alpha takes no part.
void GrayBits32(const uint8_t* bgra, size_t width, int level, uint8_t* bits);

}  // namespace rasterkit::kernels
