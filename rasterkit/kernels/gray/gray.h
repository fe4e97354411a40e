#pragma once

#include <cstddef>
#include <cstdint>

#include <rasterkit/kernels/gray/gray_exceptions.h>

/// Gray values: red * 0.297 + green * 0.589 + blue * 0.114, cut toward zero, exactly as a sum in
/// the 80-bit extended format would give them, on every processor. Rows in, rows out; no kernel
/// knows a bitmap.
namespace rasterkit::kernels {

/// The gray value of one color, 0 to 255.
///
/// The weights add up to 1000 thousandths, so whole numbers settle every color but those whose sum
/// is a multiple of 1000: there the extended sum may lie just below it, and the table tells.
inline uint8_t GrayOf(uint8_t r, uint8_t g, uint8_t b) {
  const unsigned thousandths = 297u * r + 589u * g + 114u * b;
  const unsigned gray = thousandths / 1000;
  const bool whole = gray * 1000 == thousandths;
  return static_cast<uint8_t>(whole && GrayIsOneLess(r, g) ? gray - 1 : gray);
}

/// The gray values of a row of `width` pixels, bytes B G R, into `width` bytes. Neither row needs
/// any alignment, nothing is read or written beyond them, and they must not overlap.
void GrayOfRow24(const uint8_t* bgr, size_t width, uint8_t* gray);

/// The same for bytes B G R A; alpha takes no part.
void GrayOfRow32(const uint8_t* bgra, size_t width, uint8_t* gray);

/// Each of `width` pixels, bytes B G R, becomes its own gray value three times.
void GrayInPlace24(uint8_t* bgr, size_t width);

}  // namespace rasterkit::kernels
