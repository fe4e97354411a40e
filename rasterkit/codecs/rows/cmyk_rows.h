#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::detail {

/// Converts `width` pixels of four bytes C M Y K to B G R by R = C' K' / 255, rounded to nearest,
/// where a primed value is the light that the ink lets through. `inverted`: the bytes are the
/// primed values already, as Adobe's programs write them; else they are amounts of ink.
void CmykRowToBgr(const uint8_t* cmyk, uint8_t* bgr, size_t width, bool inverted);

}  // namespace rasterkit::detail
