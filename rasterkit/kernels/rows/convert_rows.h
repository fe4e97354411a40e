#pragma once

#include <cstddef>
#include <cstdint>

/// Rows of pixels from one layout to another. Source and target must not overlap; exactly the bytes
/// of `width` pixels are written.
namespace rasterkit::kernels {

/// B G R to B G R A with alpha 255.
void Row24To32(const uint8_t* pixels, size_t width, uint8_t* target);

/// B G R A to B G R.
void Row32To24(const uint8_t* pixels, size_t width, uint8_t* target);

/// Bytes above `threshold` to ones of a 1-bit row, the first pixel in bit 7; the bits after the
/// last pixel of the last byte are zero.
void BitsAbove(const uint8_t* values, size_t width, uint8_t threshold, uint8_t* target);

/// Indexes to 24-bit pixels through 256 entries B G R A.
void Row8To24(const uint8_t* indexes, size_t width, const uint8_t* table, uint8_t* target);

/// Indexes to 32-bit pixels through 256 entries B G R A.
void Row8To32(const uint8_t* indexes, size_t width, const uint8_t* table, uint8_t* target);

}  // namespace rasterkit::kernels
