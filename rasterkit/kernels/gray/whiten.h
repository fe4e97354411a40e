#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Makes each of `count` pixels B G R A whose alpha is 0 opaque white, and leaves the others.
/// Memory without such pixels is only read.
void WhitenTransparentPixels(uint8_t* bgra, size_t count);

}  // namespace rasterkit::kernels
