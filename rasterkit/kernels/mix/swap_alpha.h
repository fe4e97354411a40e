#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::kernels {

/// Gives each of `count` pixels B G R A the alpha 255 where it is 0, and 0 where it is not.
void SwapAlpha32(uint8_t* bgra, size_t count);

}  // namespace rasterkit::kernels
