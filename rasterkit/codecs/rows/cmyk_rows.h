#pragma once

#include <cstddef>
#include <cstdint>

namespace rasterkit::detail {

/// Converts `width` pixels of four bytes C M Y K to B G R by R = C' K' / 255, rounded to nearest,
/// with C' = 255 - C and so on. `inverted`: the bytes are C' and K' themselves, as in files with an
/// Adobe marker; else they are amounts of ink.
void CmykRowToBgr(const uint8_t* cmyk, uint8_t* bgr, size_t width, bool inverted);

}  // namespace rasterkit::detail
